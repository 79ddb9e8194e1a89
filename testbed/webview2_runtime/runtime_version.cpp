// Reads the variables and the file anew at every call.
#include "runtime_version.h"

#include <array>
#include <charconv>
#include <compare>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "testbed/chromium/text.h"
#include "testbed/windows_gaps/environment_text.h"

namespace webview2_runtime {
namespace {

constexpr wchar_t kInstalledVersion[] = L"146.0.3856.49";
using Version = std::array<unsigned int, 4>;

std::optional<std::wstring> VersionOfFolder(const std::wstring& folder) {
    std::ifstream file(std::filesystem::path(folder) / L"version.txt", std::ios::binary);
    std::string line;
    if (!std::getline(file, line)) {
        return std::nullopt;
    }
    if (line.ends_with('\r')) {
        line.pop_back();
    }
    return testbed::chromium::ToUtf16(line);
}

std::optional<Version> ParseVersion(const std::wstring& text) {
    const std::string narrow = testbed::chromium::ToUtf8(text.substr(0, text.find(L' ')));
    const char* position = narrow.data();
    const char* const end = position + narrow.size();
    Version version{};
    for (std::size_t i = 0; i < version.size(); ++i) {
        if (i != 0 && (position == end || *position++ != '.')) {
            return std::nullopt;
        }
        const auto [next, error] = std::from_chars(position, end, version.at(i));
        if (error != std::errc()) {
            return std::nullopt;
        }
        position = next;
    }
    return position == end ? std::optional(version) : std::nullopt;
}

} // namespace

std::optional<std::wstring> FindRuntimeVersion(const std::wstring& browserFolder) {
    if (!browserFolder.empty()) {
        return VersionOfFolder(browserFolder);
    }
    const std::wstring version =
        windows_gaps::EnvironmentText(L"KELDA_TEST_RUNTIME_VERSION").value_or(kInstalledVersion);
    return version == L"none" ? std::nullopt : std::optional(version);
}

HRESULT CompareVersions(const std::wstring& left, const std::wstring& right, int& order) {
    const auto leftVersion = ParseVersion(left);
    const auto rightVersion = ParseVersion(right);
    if (!leftVersion || !rightVersion) {
        return E_INVALIDARG;
    }
    const auto comparison = *leftVersion <=> *rightVersion;
    order = static_cast<int>(std::is_gt(comparison)) - static_cast<int>(std::is_lt(comparison));
    return S_OK;
}

std::wstring BrowserFolder(PCWSTR given) {
    return windows_gaps::EnvironmentText(L"WEBVIEW2_BROWSER_EXECUTABLE_FOLDER")
        .value_or(given == nullptr ? L"" : given);
}

} // namespace webview2_runtime
