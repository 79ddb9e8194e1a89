// The options as a COM object: who it is, how it is counted, and the scheme registrations that it holds.
#include <windows.h>

#include <objbase.h>
#include <wrl/implements.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "WebView2EnvironmentOptions.h"
#include "tests/support/replaced_import.h"
#include "webview2_not_implemented.h"

namespace {

using Microsoft::WRL::ComPtr;
using Microsoft::WRL::Make;
using test_support::ReplacedImport;

ULONG CountOf(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

ComPtr<IUnknown> IdentityOf(IUnknown* object) {
    ComPtr<IUnknown> identity;
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, &identity), S_OK);
    return identity;
}

template <typename Interface>
void ExpectAnswered() {
    const auto options = Make<CoreWebView2EnvironmentOptions>();
    ComPtr<Interface> asked;
    ASSERT_EQ(options->QueryInterface(__uuidof(Interface), &asked), S_OK);
    EXPECT_EQ(asked.Get(), static_cast<Interface*>(options.Get()));
    EXPECT_EQ(CountOf(asked.Get()), 2u);

    const ComPtr<IUnknown> identity =
        IdentityOf(static_cast<ICoreWebView2EnvironmentOptions*>(options.Get()));
    EXPECT_EQ(IdentityOf(asked.Get()), identity);
    ComPtr<ICoreWebView2EnvironmentOptions> back;
    ASSERT_EQ(asked->QueryInterface(__uuidof(ICoreWebView2EnvironmentOptions), &back), S_OK);
    EXPECT_EQ(back.Get(), static_cast<ICoreWebView2EnvironmentOptions*>(options.Get()));
}

TEST(OptionsObject, AnswersEachOfItsInterfacesAsOneObject) {
    ExpectAnswered<ICoreWebView2EnvironmentOptions>();
    ExpectAnswered<ICoreWebView2EnvironmentOptions2>();
    ExpectAnswered<ICoreWebView2EnvironmentOptions3>();
    ExpectAnswered<ICoreWebView2EnvironmentOptions4>();
    ExpectAnswered<ICoreWebView2EnvironmentOptions5>();
    ExpectAnswered<ICoreWebView2EnvironmentOptions6>();
    ExpectAnswered<ICoreWebView2EnvironmentOptions7>();
    ExpectAnswered<ICoreWebView2EnvironmentOptions8>();
}

TEST(OptionsObject, RefusesWhatItIsNot) {
    const auto options = Make<CoreWebView2EnvironmentOptions>();
    void* object = options.Get();
    EXPECT_EQ(options->QueryInterface(IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(options->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(options->AddRef(), 2u);
    EXPECT_EQ(options->Release(), 1u);
}

/// On the test's stack: counts, but is never deleted.
class Registration final : public webview2::NotImplemented<ICoreWebView2CustomSchemeRegistration> {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1;
};

class SchemeRegistrations : public ::testing::Test {
  protected:
    using Array = std::vector<ICoreWebView2CustomSchemeRegistration*>;

    HRESULT Set(Array array) {
        return options_->SetCustomSchemeRegistrations(static_cast<UINT32>(array.size()), array.data());
    }

    /// Takes the references of what is handed out, and gives them back.
    void ExpectRegistrations(const Array& expected) {
        UINT32 count = 99;
        auto** array = reinterpret_cast<ICoreWebView2CustomSchemeRegistration**>(&count);
        const ULONG before = first_.references;
        ASSERT_EQ(options_->GetCustomSchemeRegistrations(&count, &array), S_OK);
        ASSERT_EQ(count, expected.size());
        EXPECT_EQ(array == nullptr, expected.empty());
        for (UINT32 i = 0; i < count; ++i) {
            EXPECT_EQ(array[i], expected[i]);
        }
        EXPECT_EQ(first_.references, before + static_cast<ULONG>(Times(expected, &first_)));
        for (UINT32 i = 0; i < count; ++i) {
            array[i]->Release();
        }
        CoTaskMemFree(array);
    }

    static std::ptrdiff_t Times(const Array& array, ICoreWebView2CustomSchemeRegistration* registration) {
        return std::count(array.begin(), array.end(), registration);
    }

    Registration first_;
    Registration second_;
    ComPtr<CoreWebView2EnvironmentOptions> options_ = Make<CoreWebView2EnvironmentOptions>();
};

TEST_F(SchemeRegistrations, AreNoneAtFirst) {
    ExpectRegistrations({});
}

TEST_F(SchemeRegistrations, AreHeldWhileTheyAreSet) {
    EXPECT_EQ(Set({&first_, &second_, &first_}), S_OK);
    EXPECT_EQ(first_.references, 3u);
    EXPECT_EQ(second_.references, 2u);
    ExpectRegistrations({&first_, &second_, &first_});

    EXPECT_EQ(Set({&second_}), S_OK);
    EXPECT_EQ(first_.references, 1u);
    EXPECT_EQ(second_.references, 2u);
    ExpectRegistrations({&second_});

    EXPECT_EQ(options_->SetCustomSchemeRegistrations(0, nullptr), S_OK);
    EXPECT_EQ(second_.references, 1u);
    ExpectRegistrations({});
}

TEST_F(SchemeRegistrations, AreReleasedWithTheOptions) {
    EXPECT_EQ(Set({&first_, &second_}), S_OK);
    options_.Reset();
    EXPECT_EQ(first_.references, 1u);
    EXPECT_EQ(second_.references, 1u);
}

TEST_F(SchemeRegistrations, NeedOutputs) {
    EXPECT_EQ(Set({&first_}), S_OK);
    UINT32 count = 0;
    ICoreWebView2CustomSchemeRegistration** array = nullptr;
    EXPECT_EQ(options_->GetCustomSchemeRegistrations(nullptr, &array), E_POINTER);
    EXPECT_EQ(options_->GetCustomSchemeRegistrations(&count, nullptr), E_POINTER);
    EXPECT_EQ(first_.references, 2u);
}

TEST_F(SchemeRegistrations, WithAMissingElementAreRefusedAndChangeNothing) {
    EXPECT_EQ(Set({&first_}), S_OK);
    EXPECT_EQ(Set({&second_, nullptr}), E_POINTER);
    EXPECT_EQ(options_->SetCustomSchemeRegistrations(1, nullptr), E_POINTER);
    EXPECT_EQ(second_.references, 1u);
    ExpectRegistrations({&first_});
}

TEST_F(SchemeRegistrations, WithoutMemoryStayAsTheyWere) {
    EXPECT_EQ(Set({&first_}), S_OK);
    {
        const ReplacedImport<struct Allocate, decltype(CoTaskMemAlloc)> exhausted(
            "ole32.dll", "CoTaskMemAlloc", [](SIZE_T) -> void* { return nullptr; });
        EXPECT_EQ(Set({&second_}), E_OUTOFMEMORY);
        UINT32 count = 99;
        auto** array = reinterpret_cast<ICoreWebView2CustomSchemeRegistration**>(&count);
        EXPECT_EQ(options_->GetCustomSchemeRegistrations(&count, &array), E_OUTOFMEMORY);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(array, nullptr);
    }
    EXPECT_EQ(first_.references, 2u);
    EXPECT_EQ(second_.references, 1u);
    ExpectRegistrations({&first_});
}

TEST_F(SchemeRegistrations, BlocksGoBackToTheTaskAllocator) {
    int blocks = 0;
    const ReplacedImport<struct Allocate, decltype(CoTaskMemAlloc)> allocate(
        "ole32.dll", "CoTaskMemAlloc", [&blocks](SIZE_T size) {
            ++blocks;
            return ReplacedImport<struct Allocate, decltype(CoTaskMemAlloc)>::Original(size);
        });
    const ReplacedImport<struct Free, decltype(CoTaskMemFree)> release(
        "ole32.dll", "CoTaskMemFree", [&blocks](void* block) {
            blocks -= block != nullptr ? 1 : 0;
            ReplacedImport<struct Free, decltype(CoTaskMemFree)>::Original(block);
        });
    EXPECT_EQ(Set({&first_}), S_OK);
    EXPECT_EQ(options_->put_Language(L"de"), S_OK);
    EXPECT_EQ(options_->put_Language(L"fr"), S_OK);
    EXPECT_EQ(blocks, 2) << "one for the registrations, one for the language";
    ExpectRegistrations({&first_});
    EXPECT_EQ(Set({&second_}), S_OK);
    options_.Reset();
    EXPECT_EQ(blocks, 0);
}

} // namespace
