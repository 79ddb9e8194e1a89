// A bare child window of a dialog, for others to put a window of their own into.
#pragma once

#include <windows.h>

namespace host_reference {

/// Makes one that is visible, white and of no size yet. With `keyboardInput` it takes the focus when it is clicked; what
/// focus it gets it hands on to its own child window, also to one that comes later. Destroyed with its parent.
/// @return null where the system refuses.
HWND CreateNakedWindow(HWND parent, bool keyboardInput);

} // namespace host_reference
