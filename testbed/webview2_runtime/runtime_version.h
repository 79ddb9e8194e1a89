// Which version of the runtime is said to be there. The tests decide; the Chromium behind it is always the machine's.
#pragma once

#include <optional>
#include <string>

#include <windows.h>

namespace webview2_runtime {

/// The version of the runtime in `browserFolder`: the first line of its file version.txt. With an empty folder, that of the
/// installed one: the environment variable KELDA_TEST_RUNTIME_VERSION ("none": there is no runtime), or a fixed version.
///
/// @return nothing if there is no such runtime.
std::optional<std::wstring> FindRuntimeVersion(const std::wstring& browserFolder);

/// Compares "major.minor.build.patch", with or without a channel's name behind a blank, which does not count.
///
/// @param order is set to -1, 0 or 1.
/// @return E_INVALIDARG for what is no version.
HRESULT CompareVersions(const std::wstring& left, const std::wstring& right, int& order);

/// The folder that decides: WEBVIEW2_BROWSER_EXECUTABLE_FOLDER, if set and not empty, goes before what the caller gave.
std::wstring BrowserFolder(PCWSTR given);

} // namespace webview2_runtime
