// The request header that answers a Basic challenge.
#pragma once

#include "offered_credentials.h"
#include "secret_text.h"

namespace windows_gaps {

/// @return the complete line, line end included. The texts are sent as UTF-8, as WinINet sends them.
SecretText BasicAuthorizationLine(const OfferedCredentials& credentials);

} // namespace windows_gaps
