// Where the browser keeps its profile.
#pragma once

#include <string>

namespace kelda {

/// The folder that the variable MERIDO_WEBVIEW2_USER_DATA_FOLDER names; else one below the host's local preferences;
/// else one below the directory for temporary files. UTF-8; not created here. Traced but for the second case.
std::string ChooseUserDataFolder();

} // namespace kelda
