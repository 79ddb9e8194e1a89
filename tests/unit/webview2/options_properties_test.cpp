// The options that an environment is made with: defaults, and what is put comes back.
#include <windows.h>

#include <objbase.h>
#include <wrl/implements.h>

#include <gtest/gtest.h>

#include <string>

#include "WebView2EnvironmentOptions.h"
#include "tests/support/replaced_import.h"

namespace {

using Microsoft::WRL::ComPtr;
using Microsoft::WRL::Make;
using test_support::ReplacedImport;

using Options = CoreWebView2EnvironmentOptions;

constexpr const wchar_t* kText = L"--lang=de \u00fc\u4e2d";

void* WINAPI NoMemory(SIZE_T) {
    return nullptr;
}

/// For as long as it lives, the task allocator has nothing left.
struct MemoryExhausted {
    ReplacedImport<struct Allocate, decltype(CoTaskMemAlloc)> allocate{"ole32.dll", "CoTaskMemAlloc",
                                                                       NoMemory};
};

/// A text property with what it is from the start.
struct TextProperty {
    const char* name;
    HRESULT (STDMETHODCALLTYPE Options::*get)(LPWSTR*);
    HRESULT (STDMETHODCALLTYPE Options::*put)(LPCWSTR);
    const wchar_t* initial;
};

class TextProperties : public ::testing::TestWithParam<TextProperty> {
  protected:
    HRESULT Get(LPWSTR* value) { return (options_.Get()->*GetParam().get)(value); }
    HRESULT Put(LPCWSTR value) { return (options_.Get()->*GetParam().put)(value); }

    /// @param expected null for an unset property.
    void ExpectValue(const wchar_t* expected) {
        wchar_t before[] = L"before";
        LPWSTR value = before;
        ASSERT_EQ(Get(&value), S_OK);
        if (expected == nullptr) {
            EXPECT_EQ(value, nullptr);
        } else {
            ASSERT_NE(value, nullptr);
            EXPECT_STREQ(value, expected);
        }
        CoTaskMemFree(value);
    }

    ComPtr<Options> options_ = Make<Options>();
};

TEST_P(TextProperties, HasItsDefault) {
    ExpectValue(GetParam().initial);
}

TEST_P(TextProperties, GivesBackWhatWasPut) {
    std::wstring text = kText;
    EXPECT_EQ(Put(text.c_str()), S_OK);
    text.assign(text.size(), L'?'); // the property has a copy
    ExpectValue(kText);
    EXPECT_EQ(Put(L""), S_OK);
    ExpectValue(L"");
}

TEST_P(TextProperties, IsClearedByNull) {
    EXPECT_EQ(Put(kText), S_OK);
    EXPECT_EQ(Put(nullptr), S_OK);
    ExpectValue(nullptr);
}

TEST_P(TextProperties, HandsOutCopies) {
    EXPECT_EQ(Put(kText), S_OK);
    LPWSTR copy = nullptr;
    ASSERT_EQ(Get(&copy), S_OK);
    copy[0] = L'?';
    ExpectValue(kText);
    CoTaskMemFree(copy);
}

TEST_P(TextProperties, NeedsAnOutput) {
    EXPECT_EQ(Get(nullptr), E_POINTER);
}

TEST_P(TextProperties, WithoutMemoryStaysAsItWas) {
    EXPECT_EQ(Put(kText), S_OK);
    {
        const MemoryExhausted exhausted;
        EXPECT_EQ(Put(L"another"), E_OUTOFMEMORY);
        wchar_t before[] = L"before";
        LPWSTR value = before;
        EXPECT_EQ(Get(&value), E_OUTOFMEMORY);
        EXPECT_EQ(value, nullptr);
    }
    ExpectValue(kText);
}

TEST_P(TextProperties, IsClearedAndMadeWithoutMemory) {
    EXPECT_EQ(Put(kText), S_OK);
    {
        const MemoryExhausted exhausted;
        EXPECT_EQ(Put(nullptr), S_OK);
    }
    ExpectValue(nullptr);
    {
        const MemoryExhausted exhausted;
        options_ = Make<Options>();
    }
    ExpectValue(GetParam().initial);
}

INSTANTIATE_TEST_SUITE_P(
    Options, TextProperties,
    ::testing::Values(TextProperty{"Arguments", &Options::get_AdditionalBrowserArguments,
                                   &Options::put_AdditionalBrowserArguments, nullptr},
                      TextProperty{"Language", &Options::get_Language, &Options::put_Language, nullptr},
                      TextProperty{"Version", &Options::get_TargetCompatibleBrowserVersion,
                                   &Options::put_TargetCompatibleBrowserVersion, L"146.0.3856.49"}),
    [](const auto& tested) { return std::string(tested.param.name); });

struct FlagProperty {
    const char* name;
    HRESULT (STDMETHODCALLTYPE Options::*get)(BOOL*);
    HRESULT (STDMETHODCALLTYPE Options::*put)(BOOL);
    BOOL initial;
};

class FlagProperties : public ::testing::TestWithParam<FlagProperty> {
  protected:
    void ExpectValue(BOOL expected) {
        BOOL value = -7;
        EXPECT_EQ((options_.Get()->*GetParam().get)(&value), S_OK);
        EXPECT_EQ(value, expected);
    }

    ComPtr<Options> options_ = Make<Options>();
};

TEST_P(FlagProperties, HasItsDefault) {
    ExpectValue(GetParam().initial);
}

TEST_P(FlagProperties, GivesBackWhatWasPut) {
    for (const BOOL value : {TRUE, FALSE, TRUE}) {
        EXPECT_EQ((options_.Get()->*GetParam().put)(value), S_OK);
        ExpectValue(value);
    }
}

TEST_P(FlagProperties, NeedsAnOutput) {
    EXPECT_EQ((options_.Get()->*GetParam().get)(nullptr), E_POINTER);
}

INSTANTIATE_TEST_SUITE_P(
    Options, FlagProperties,
    ::testing::Values(FlagProperty{"SingleSignOn", &Options::get_AllowSingleSignOnUsingOSPrimaryAccount,
                                   &Options::put_AllowSingleSignOnUsingOSPrimaryAccount, FALSE},
                      FlagProperty{"ExclusiveFolder", &Options::get_ExclusiveUserDataFolderAccess,
                                   &Options::put_ExclusiveUserDataFolderAccess, FALSE},
                      FlagProperty{"CrashReporting", &Options::get_IsCustomCrashReportingEnabled,
                                   &Options::put_IsCustomCrashReportingEnabled, FALSE},
                      FlagProperty{"TrackingPrevention", &Options::get_EnableTrackingPrevention,
                                   &Options::put_EnableTrackingPrevention, TRUE},
                      FlagProperty{"Extensions", &Options::get_AreBrowserExtensionsEnabled,
                                   &Options::put_AreBrowserExtensionsEnabled, FALSE}),
    [](const auto& tested) { return std::string(tested.param.name); });

template <typename Value>
struct EnumProperty {
    HRESULT (STDMETHODCALLTYPE Options::*get)(Value*);
    HRESULT (STDMETHODCALLTYPE Options::*put)(Value);
};

template <typename Value>
void ExpectEnumProperty(EnumProperty<Value> property, Value initial, Value other) {
    const ComPtr<Options> options = Make<Options>();
    Value value = other;
    EXPECT_EQ((options.Get()->*property.get)(&value), S_OK);
    EXPECT_EQ(value, initial);
    EXPECT_EQ((options.Get()->*property.put)(other), S_OK);
    EXPECT_EQ((options.Get()->*property.get)(&value), S_OK);
    EXPECT_EQ(value, other);
    EXPECT_EQ((options.Get()->*property.get)(nullptr), E_POINTER);
}

TEST(EnumProperties, ChannelSearchKind) {
    ExpectEnumProperty<COREWEBVIEW2_CHANNEL_SEARCH_KIND>(
        {&Options::get_ChannelSearchKind, &Options::put_ChannelSearchKind},
        COREWEBVIEW2_CHANNEL_SEARCH_KIND_MOST_STABLE, COREWEBVIEW2_CHANNEL_SEARCH_KIND_LEAST_STABLE);
}

TEST(EnumProperties, ReleaseChannels) {
    ExpectEnumProperty<COREWEBVIEW2_RELEASE_CHANNELS>(
        {&Options::get_ReleaseChannels, &Options::put_ReleaseChannels},
        static_cast<COREWEBVIEW2_RELEASE_CHANNELS>(15), COREWEBVIEW2_RELEASE_CHANNELS_BETA);
}

TEST(EnumProperties, ScrollBarStyle) {
    ExpectEnumProperty<COREWEBVIEW2_SCROLLBAR_STYLE>(
        {&Options::get_ScrollBarStyle, &Options::put_ScrollBarStyle}, COREWEBVIEW2_SCROLLBAR_STYLE_DEFAULT,
        COREWEBVIEW2_SCROLLBAR_STYLE_FLUENT_OVERLAY);
}

TEST(OptionsVersion, IsTheOneOfTheMacro) {
    EXPECT_STREQ(CORE_WEBVIEW_TARGET_PRODUCT_VERSION, L"146.0.3856.49");
}

} // namespace
