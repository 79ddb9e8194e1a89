// The legacy browser on the platform's own WebBrowser control. Wine's, without an engine, shows no page: every navigation ends
// in an error.
#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <string>

#include <windows.h>

#include <exdisp.h>
#include <exdispid.h>
#include <ole2.h>
#include <wrl/client.h>

#include <gtest/gtest.h>

#include "kelda/kelda.h"
#include "tests/support/fake_object.h"
#include "tests/support/message_pump.h"
#include "tests/support/process_counts.h"
#include "tests/support/replaced_import.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/transcript.h"
#include "tests/unit/browser_ie/recording_owner.h"

using Microsoft::WRL::ComPtr;
using test_support::Lines;
using test_support::PumpUntil;
using test_support::PumpWaiting;

namespace kelda {
namespace {

// Nothing listens there.
constexpr const char* kServer = "http://127.0.0.1:9";
constexpr const char* kFailed = "[0] Navigation failed. Leaving IE control visible for user to read message";

/// A second listener, which hears each event after the browser.
class Listener final : public test_support::CountedFake<IDispatch> {
  public:
    explicit Listener(std::function<void(DISPID, const DISPPARAMS&)> heard)
        : CountedFake("listener"), heard_(std::move(heard)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid != IID_IUnknown && iid != IID_IDispatch && iid != DIID_DWebBrowserEvents2) {
            return E_NOINTERFACE;
        }
        AddRef();
        *object = static_cast<IDispatch*>(this);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* /*count*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** /*info*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*iid*/, LPOLESTR* /*names*/, UINT /*count*/,
                                            LCID /*locale*/, DISPID* /*ids*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID /*iid*/, LCID /*locale*/, WORD /*flags*/,
                                     DISPPARAMS* parameters, VARIANT* /*result*/, EXCEPINFO* /*exception*/,
                                     UINT* /*wrongArgument*/) override {
        heard_(id, *parameters);
        return S_OK;
    }

  private:
    std::function<void(DISPID, const DISPPARAMS&)> heard_;
};

class WineControl : public test_support::TranscriptTest {
  protected:
    WineControl() : TranscriptTest("ZanWebBrowserIE") {
        top = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 800, 600, nullptr, nullptr,
                              GetModuleHandleW(nullptr), nullptr);
        parent = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 10, 20, 640, 480, top, nullptr,
                                 GetModuleHandleW(nullptr), nullptr);
    }
    ~WineControl() override {
        Drop();
        DestroyWindow(top);
        PumpWaiting();
    }
    WineControl(const WineControl&) = delete;
    WineControl& operator=(const WineControl&) = delete;

    void BringUp(const char* server = kServer, int checkMode = 0) {
        browser = std::make_unique<ZanWebBrowserIE>(server, checkMode);
        browser->InitializeCom();
        browser->Create(&owner, parent);
    }

    void Drop() {
        if (browser) {
            browser->Destroy();
            browser.reset();
        }
    }

    /// Runs the message loop until the navigation has failed.
    /// @return what was recorded on the way.
    static Lines Failure() {
        Lines lines;
        EXPECT_TRUE(PumpUntil([&] {
            const Lines more = TakeTranscript();
            lines.insert(lines.end(), more.begin(), more.end());
            return std::find(lines.begin(), lines.end(), kFailed) != lines.end();
        }));
        return lines;
    }

    static std::wstring ClassOf(HWND window) {
        std::array<wchar_t, 64> name{};
        return {name.data(),
                static_cast<size_t>(GetClassNameW(window, name.data(), static_cast<int>(name.size())))};
    }

    /// Position and size below the parent.
    RECT PlaceOf(HWND window) const {
        RECT place{};
        GetWindowRect(window, &place);
        MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
        return place;
    }

    test_support::ScopedVariable userAgent{L"MERIDO_ZANWEBBROWSER_USER_AGENT", L"default"};
    HWND top = nullptr;
    HWND parent = nullptr;
    RecordingOwner owner;
    std::unique_ptr<ZanWebBrowserIE> browser;
};

TEST_F(WineControl, IsCreatedInPlaceInTheOwnersWindow) {
    BringUp();
    EXPECT_EQ(TakeTranscript(),
              (Lines{"[0] The COM library was initialized successfully", "[0] Using default User-Agent"}));
    const HWND window = browser->GetWindowHandle();
    EXPECT_EQ(ClassOf(window), L"Shell Embedding");
    EXPECT_EQ(GetParent(window), parent);
    EXPECT_TRUE(IsWindowVisible(window));
    const RECT place = PlaceOf(window);
    const RECT expected{0, 0, 640, 480};
    EXPECT_TRUE(EqualRect(&place, &expected)) << place.right << "x" << place.bottom;
}

TEST_F(WineControl, FollowsTheSizeOfTheOwnersWindow) {
    BringUp();
    SetWindowPos(parent, nullptr, 0, 0, 321, 123, SWP_NOMOVE | SWP_NOZORDER);
    browser->Resize();
    const RECT place = PlaceOf(browser->GetWindowHandle());
    const RECT expected{0, 0, 321, 123};
    EXPECT_TRUE(EqualRect(&place, &expected)) << place.right << "x" << place.bottom;
}

TEST_F(WineControl, ALoginPageThatCannotBeReachedIsTracedAndNotReported) {
    BringUp();
    const Lines lines = Failure();
    EXPECT_EQ(lines, (Lines{"[0] The COM library was initialized successfully",
                            "[0] Using default User-Agent", kFailed}));
    EXPECT_TRUE(IsWindowVisible(browser->GetWindowHandle()));
}

TEST_F(WineControl, ItsWindowGoesWithIt) {
    BringUp();
    const HWND window = browser->GetWindowHandle();
    browser->Destroy();
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
}

TEST_F(WineControl, MayBeTakenDownWhileItIsUnderWay) {
    BringUp();
    Drop();
    TakeTranscript();
    PumpWaiting();
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(WineControl, MayBeCreatedAgain) {
    BringUp();
    Failure();
    browser->Destroy();
    browser->Create(&owner, parent);
    EXPECT_EQ(ClassOf(browser->GetWindowHandle()), L"Shell Embedding");
    EXPECT_EQ(Failure().back(), kFailed);
}

TEST_F(WineControl, MayLoseItsWindowFirst) {
    BringUp();
    DestroyWindow(top);
    PumpWaiting();
    TakeTranscript();
    Drop();
    EXPECT_EQ(TakeTranscript(), Lines{});
}

/// The control itself, to navigate by.
class NavigatedControl : public WineControl {
  protected:
    NavigatedControl() {
        BringUpWatched();
        Failure();
        ComPtr<IConnectionPointContainer> container;
        control->QueryInterface(IID_PPV_ARGS(container.GetAddressOf()));
        container->FindConnectionPoint(DIID_DWebBrowserEvents2, events.GetAddressOf());
        const auto listener = test_support::MakeFake<Listener>(&Heard);
        EXPECT_EQ(events->Advise(listener.Get(), &cookie), S_OK);
    }
    ~NavigatedControl() override { events->Unadvise(cookie); }
    NavigatedControl(const NavigatedControl&) = delete;
    NavigatedControl& operator=(const NavigatedControl&) = delete;

    /// Brings the browser up and keeps its control.
    void BringUpWatched() {
        using Creation = test_support::ReplacedImport<struct CreationTag, decltype(OleCreate)>;
        const Creation creation(
            "ole32.dll", "OleCreate",
            [this](REFCLSID classId, REFIID iid, DWORD render, LPFORMATETC format, LPOLECLIENTSITE site,
                   LPSTORAGE storage, LPVOID* object) {
                const HRESULT result =
                    Creation::Original(classId, iid, render, format, site, storage, object);
                static_cast<IUnknown*>(*object)->QueryInterface(IID_PPV_ARGS(control.GetAddressOf()));
                return result;
            });
        BringUp();
    }

    static void Heard(DISPID id, const DISPPARAMS& parameters) {
        if (id == DISPID_BEFORENAVIGATE2) {
            const VARIANTARG* const arguments = parameters.rgvarg;
            test_support::Record(std::string("before ") +
                                 (*arguments[0].pboolVal != VARIANT_FALSE ? "a cancelled " : "a ") +
                                 "navigation");
        }
    }

    /// Navigates, and runs the message loop until the listener has heard of it.
    /// @return what it heard.
    std::string Navigated(const wchar_t* url) {
        TakeTranscript();
        const BSTR text = SysAllocString(url);
        EXPECT_EQ(control->Navigate(text, nullptr, nullptr, nullptr, nullptr), S_OK);
        SysFreeString(text);
        Lines lines;
        EXPECT_TRUE(PumpUntil([&] {
            lines = TakeTranscript();
            return !lines.empty();
        }));
        return lines.empty() ? "" : lines[0];
    }

    ComPtr<IWebBrowser2> control;
    ComPtr<IConnectionPoint> events;
    DWORD cookie = 0;
};

TEST_F(NavigatedControl, CancelsLinksThatOnlySayJavascriptVoid0) {
    EXPECT_EQ(Navigated(L"javascript:void(0)"), "before a cancelled navigation");
}

TEST_F(NavigatedControl, LetsOtherNavigationsGoOn) {
    EXPECT_EQ(Navigated(L"http://127.0.0.1:9/other"), "before a navigation");
}

TEST_F(WineControl, TwentyOfThemLeaveNothingOpen) {
    const auto live = [this] {
        BringUp();
        Failure();
        Drop();
        PumpWaiting();
    };
    for (int run = 0; run < 3; ++run) { // these load modules, start threads, register classes
        live();
    }
    const size_t handles = test_support::CountHandles();
    const size_t windows = test_support::CountWindows();
    const size_t gdiObjects = test_support::CountGdiObjects();
    for (int run = 0; run < 20; ++run) {
        live();
    }
    // A worker of the platform's thread pool holds an event until it ends, after some seconds without work.
    EXPECT_TRUE(PumpUntil([&] { return test_support::CountHandles() <= handles; }))
        << test_support::CountHandles() << " instead of " << handles;
    EXPECT_LE(test_support::CountWindows(), windows);
    EXPECT_LE(test_support::CountGdiObjects(), gdiObjects);
}

} // namespace
} // namespace kelda
