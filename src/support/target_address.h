// The address that a browser navigates to.
#pragma once

#include "du/symbol.h"

namespace kelda {

/// The server's address with the path of the login page (`checkMode` 0) or of the authenticated-access check appended,
/// with nothing put in between: the server's address is expected to end with a slash for the check only.
du::Symbol TargetAddress(const du::Symbol& serverUrl, int checkMode);

} // namespace kelda
