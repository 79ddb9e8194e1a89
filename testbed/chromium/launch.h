// Starts Chromium, a program of the machine that Wine runs on, at the far end of a socket.
#pragma once

#include <string>

#include <windows.h>

#include "testbed/chromium/socket_pair.h"

namespace testbed::chromium {

/// The name that the machine below Wine has for a folder, without a separator at its end; the folder is made if it is
/// missing.
///
/// @param error the reason if the result is empty; `ERROR_FILE_NOT_FOUND` where there is nothing below, as on Windows.
std::string NativeFolder(const std::wstring& folder, DWORD& error);

/// What the launcher says when Chromium has ended, as an event with the member `status`: Chromium's exit status, or this
/// plus the number of a signal.
constexpr const char* kExitedEvent = "Launcher.exited";
constexpr int kExitedBySignal = 256;
constexpr int kExitedNotFound = 127;
constexpr int kExitedFolderInUse = 21;

/// From now on Chromium reads and writes at the other end of `channel`, messages that end with a zero byte, and ends when that
/// is closed. When Chromium has ended, and not before, `kExitedEvent` arrives at the other end of `status`, which is closed
/// then. If `status` is shut down before, Chromium is killed two seconds later.
///
/// @return a Win32 error. Whether there is a Chromium to start shows only later, by `kExitedNotFound`.
DWORD StartChromium(const std::string& nativeFolder, const Socket& channel, const Socket& status);

/// Starts to remove a folder with all that is in it, and does not wait. By a program of the machine below: Windows' functions
/// do not see the links to nowhere that a killed Chromium leaves.
void StartRemoving(const std::string& nativeFolder);

} // namespace testbed::chromium
