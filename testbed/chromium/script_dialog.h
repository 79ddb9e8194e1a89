// The boxes that scripts open.
#pragma once

#include <windows.h>

#include "testbed/chromium/connection.h"

namespace testbed::chromium {

/// Shows a dialog of Page.javascriptDialogOpening and waits for the answer in a message loop.
///
/// @param owner may be null.
/// @return parameters of Page.handleJavaScriptDialog. A prompt is answered with what the page proposes.
Json ShowScriptDialog(const Json& opening, HWND owner);

/// The answer where no dialog may be shown.
Json DismissScriptDialog(const Json& opening);

} // namespace testbed::chromium
