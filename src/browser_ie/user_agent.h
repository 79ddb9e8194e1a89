// The User-Agent that urlmon sends.
#pragma once

namespace kelda {

/// Sets the User-Agent of the whole process: to the text of MERIDO_ZANWEBBROWSER_USER_AGENT where that is set; else, where
/// urlmon names a Windows NT of version 6 to 9, to urlmon's own text with Windows NT 10.0 in its place. The word "default"
/// in the variable leaves all as it is. urlmon's failures end it without a word.
void ApplyUserAgent();

} // namespace kelda
