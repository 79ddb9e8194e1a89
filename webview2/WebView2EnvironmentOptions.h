// The options to make an environment with, under the SDK's own names and with its defaults. Where the SDK itself is there
// (KELDA_WEBVIEW2_SDK), its header of the same name takes this one's place.
#pragma once

#include <atomic>

#include <wrl/implements.h>

#include "WebView2.h"
#include "options/scheme_registrations.h"
#include "options/text_option.h"
#include "options/value_option.h"

/// The release of the runtime that these declarations belong to.
#define CORE_WEBVIEW_TARGET_PRODUCT_VERSION L"146.0.3856.49"

/// What the runtime asks when it makes an environment. Made by Microsoft::WRL::Make, with one reference for its maker.
/// Getters answer E_POINTER where there is nothing to write to, and setters that run out of memory leave the property as
/// it was. The count may be used from any thread, the properties from one thread at a time.
class CoreWebView2EnvironmentOptions final : public ICoreWebView2EnvironmentOptions,
                                             public ICoreWebView2EnvironmentOptions2,
                                             public ICoreWebView2EnvironmentOptions3,
                                             public ICoreWebView2EnvironmentOptions4,
                                             public ICoreWebView2EnvironmentOptions5,
                                             public ICoreWebView2EnvironmentOptions6,
                                             public ICoreWebView2EnvironmentOptions7,
                                             public ICoreWebView2EnvironmentOptions8 {
  public:
    CoreWebView2EnvironmentOptions() = default;
    CoreWebView2EnvironmentOptions(const CoreWebView2EnvironmentOptions&) = delete;
    CoreWebView2EnvironmentOptions& operator=(const CoreWebView2EnvironmentOptions&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE get_AdditionalBrowserArguments(LPWSTR* value) override {
        return additionalBrowserArguments_.Get(value);
    }
    HRESULT STDMETHODCALLTYPE put_AdditionalBrowserArguments(LPCWSTR value) override {
        return additionalBrowserArguments_.Put(value);
    }
    HRESULT STDMETHODCALLTYPE get_Language(LPWSTR* value) override { return language_.Get(value); }
    HRESULT STDMETHODCALLTYPE put_Language(LPCWSTR value) override { return language_.Put(value); }
    HRESULT STDMETHODCALLTYPE get_TargetCompatibleBrowserVersion(LPWSTR* value) override {
        return targetCompatibleBrowserVersion_.Get(value);
    }
    HRESULT STDMETHODCALLTYPE put_TargetCompatibleBrowserVersion(LPCWSTR value) override {
        return targetCompatibleBrowserVersion_.Put(value);
    }
    HRESULT STDMETHODCALLTYPE get_AllowSingleSignOnUsingOSPrimaryAccount(BOOL* allow) override {
        return allowSingleSignOn_.Get(allow);
    }
    HRESULT STDMETHODCALLTYPE put_AllowSingleSignOnUsingOSPrimaryAccount(BOOL allow) override {
        return allowSingleSignOn_.Put(allow);
    }

    HRESULT STDMETHODCALLTYPE get_ExclusiveUserDataFolderAccess(BOOL* value) override {
        return exclusiveUserDataFolderAccess_.Get(value);
    }
    HRESULT STDMETHODCALLTYPE put_ExclusiveUserDataFolderAccess(BOOL value) override {
        return exclusiveUserDataFolderAccess_.Put(value);
    }

    HRESULT STDMETHODCALLTYPE get_IsCustomCrashReportingEnabled(BOOL* value) override {
        return customCrashReporting_.Get(value);
    }
    HRESULT STDMETHODCALLTYPE put_IsCustomCrashReportingEnabled(BOOL value) override {
        return customCrashReporting_.Put(value);
    }

    HRESULT STDMETHODCALLTYPE GetCustomSchemeRegistrations(
        UINT32* count, ICoreWebView2CustomSchemeRegistration*** schemeRegistrations) override {
        return schemeRegistrations_.Get(count, schemeRegistrations);
    }
    HRESULT STDMETHODCALLTYPE SetCustomSchemeRegistrations(
        UINT32 count, ICoreWebView2CustomSchemeRegistration** schemeRegistrations) override {
        return schemeRegistrations_.Set(count, schemeRegistrations);
    }

    HRESULT STDMETHODCALLTYPE get_EnableTrackingPrevention(BOOL* value) override {
        return trackingPrevention_.Get(value);
    }
    HRESULT STDMETHODCALLTYPE put_EnableTrackingPrevention(BOOL value) override {
        return trackingPrevention_.Put(value);
    }

    HRESULT STDMETHODCALLTYPE get_AreBrowserExtensionsEnabled(BOOL* value) override {
        return browserExtensions_.Get(value);
    }
    HRESULT STDMETHODCALLTYPE put_AreBrowserExtensionsEnabled(BOOL value) override {
        return browserExtensions_.Put(value);
    }

    HRESULT STDMETHODCALLTYPE get_ChannelSearchKind(COREWEBVIEW2_CHANNEL_SEARCH_KIND* value) override {
        return channelSearchKind_.Get(value);
    }
    HRESULT STDMETHODCALLTYPE put_ChannelSearchKind(COREWEBVIEW2_CHANNEL_SEARCH_KIND value) override {
        return channelSearchKind_.Put(value);
    }
    HRESULT STDMETHODCALLTYPE get_ReleaseChannels(COREWEBVIEW2_RELEASE_CHANNELS* value) override {
        return releaseChannels_.Get(value);
    }
    HRESULT STDMETHODCALLTYPE put_ReleaseChannels(COREWEBVIEW2_RELEASE_CHANNELS value) override {
        return releaseChannels_.Put(value);
    }

    HRESULT STDMETHODCALLTYPE get_ScrollBarStyle(COREWEBVIEW2_SCROLLBAR_STYLE* value) override {
        return scrollBarStyle_.Get(value);
    }
    HRESULT STDMETHODCALLTYPE put_ScrollBarStyle(COREWEBVIEW2_SCROLLBAR_STYLE value) override {
        return scrollBarStyle_.Put(value);
    }

  private:
    ~CoreWebView2EnvironmentOptions() = default;

    static constexpr auto kAllReleaseChannels = static_cast<COREWEBVIEW2_RELEASE_CHANNELS>(
        COREWEBVIEW2_RELEASE_CHANNELS_STABLE | COREWEBVIEW2_RELEASE_CHANNELS_BETA |
        COREWEBVIEW2_RELEASE_CHANNELS_DEV | COREWEBVIEW2_RELEASE_CHANNELS_CANARY);

    std::atomic<ULONG> references_ = 1;
    webview2_detail::TextOption additionalBrowserArguments_;
    webview2_detail::TextOption language_;
    webview2_detail::TextOption targetCompatibleBrowserVersion_{CORE_WEBVIEW_TARGET_PRODUCT_VERSION};
    webview2_detail::ValueOption<BOOL> allowSingleSignOn_{FALSE};
    webview2_detail::ValueOption<BOOL> exclusiveUserDataFolderAccess_{FALSE};
    webview2_detail::ValueOption<BOOL> customCrashReporting_{FALSE};
    webview2_detail::SchemeRegistrations schemeRegistrations_;
    webview2_detail::ValueOption<BOOL> trackingPrevention_{TRUE};
    webview2_detail::ValueOption<BOOL> browserExtensions_{FALSE};
    webview2_detail::ValueOption<COREWEBVIEW2_CHANNEL_SEARCH_KIND> channelSearchKind_{
        COREWEBVIEW2_CHANNEL_SEARCH_KIND_MOST_STABLE};
    webview2_detail::ValueOption<COREWEBVIEW2_RELEASE_CHANNELS> releaseChannels_{kAllReleaseChannels};
    webview2_detail::ValueOption<COREWEBVIEW2_SCROLLBAR_STYLE> scrollBarStyle_{
        COREWEBVIEW2_SCROLLBAR_STYLE_DEFAULT};
};
