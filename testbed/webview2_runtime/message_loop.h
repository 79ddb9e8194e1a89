// Work for later, in the message loop of the thread that asks for it.
#pragma once

#include <functional>

namespace webview2_runtime {

/// Calls `task` once, from the message loop of this thread, never inside this call. A thread that ends first, or runs no
/// message loop, never calls it. The task must not throw.
///
/// @throws std::system_error if the system refuses the window that carries the message.
void PostToMessageLoop(std::function<void()> task);

} // namespace webview2_runtime
