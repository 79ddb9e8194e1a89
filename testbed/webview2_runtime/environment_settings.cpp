// The options object is the host's own: every getter may fail.
#include "environment_settings.h"

#include <filesystem>
#include <system_error>

#include <wrl/client.h>

#include "com_text.h"
#include "testbed/windows_gaps/environment_text.h"

namespace webview2_runtime {
namespace {

using Microsoft::WRL::ComPtr;

template <typename Getter>
HRESULT ReadText(ICoreWebView2EnvironmentOptions* options, Getter getter, std::wstring& value) {
    ReceivedText text;
    const HRESULT result = (options->*getter)(text.Receive());
    value = text.Text();
    return result;
}

std::filesystem::path ProgramPath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
        }
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

} // namespace

HRESULT ReadSettings(ICoreWebView2EnvironmentOptions* options, EnvironmentSettings& settings) {
    if (options == nullptr) {
        return S_OK;
    }
    using Options = ICoreWebView2EnvironmentOptions;
    HRESULT result =
        ReadText(options, &Options::get_AdditionalBrowserArguments, settings.additionalBrowserArguments);
    if (SUCCEEDED(result)) {
        result = ReadText(options, &Options::get_Language, settings.language);
    }
    if (SUCCEEDED(result)) {
        result = ReadText(options, &Options::get_TargetCompatibleBrowserVersion,
                          settings.targetCompatibleBrowserVersion);
    }
    BOOL flag = FALSE;
    if (SUCCEEDED(result)) {
        result = options->get_AllowSingleSignOnUsingOSPrimaryAccount(&flag);
        settings.allowSingleSignOn = flag != FALSE;
    }
    ComPtr<ICoreWebView2EnvironmentOptions3> options3;
    if (SUCCEEDED(result) && SUCCEEDED(options->QueryInterface(IID_PPV_ARGS(&options3)))) {
        result = options3->get_IsCustomCrashReportingEnabled(&flag);
        settings.customCrashReporting = flag != FALSE;
    }
    return result;
}

std::wstring UserDataFolder(PCWSTR given) {
    const std::wstring named =
        windows_gaps::EnvironmentText(L"WEBVIEW2_USER_DATA_FOLDER").value_or(given == nullptr ? L"" : given);
    const std::filesystem::path program = ProgramPath();
    if (named.empty()) {
        return program.native() + L".WebView2";
    }
    const std::filesystem::path folder = (program.parent_path() / named).lexically_normal();
    const bool endsInSeparator = folder.has_relative_path() && !folder.has_filename();
    return endsInSeparator ? folder.parent_path().native() : folder.native();
}

} // namespace webview2_runtime
