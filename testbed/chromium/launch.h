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

/// A user data folder.
struct Profile {
    std::string nativeFolder;
    /// Whether the launcher removes it when Chromium has ended. That is not for Windows' functions: they do not see the links
    /// to nowhere that a killed Chromium leaves.
    bool temporary = false;
};

/// What the launcher says when Chromium has ended, as an event with the member `status`: Chromium's exit status, or this
/// plus the number of a signal.
constexpr const char* kExitedEvent = "Launcher.exited";
constexpr int kExitedBySignal = 256;
constexpr int kExitedNotFound = 127;
constexpr int kExitedFolderInUse = 21;

/// From now on Chromium reads and writes at the other end of `channel`, messages that end with a zero byte, and ends when that
/// is closed. When Chromium has ended and its temporary folder has gone, and not before, `kExitedEvent` arrives at the other end
/// of `status`, which is closed then. If `status` is shut down before, Chromium is killed two seconds later.
///
/// @return a Win32 error. Whether there is a Chromium to start shows only later, by `kExitedNotFound`.
DWORD StartChromium(const Profile& profile, const Socket& channel, const Socket& status);

} // namespace testbed::chromium
