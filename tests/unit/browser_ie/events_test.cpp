// What the browser does when the control raises its events.
#include <array>
#include <initializer_list>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <windows.h>

#include <exdispid.h>
#include <oleauto.h>
#include <wrl/client.h>

#include "ie_browser_test.h"

using Microsoft::WRL::ComPtr;
using test_support::InTurn;
using test_support::Lines;

namespace kelda {
namespace {

const Lines kInstallsHook = {"SetWindowsHookExA 3 for this thread"};
const Lines kCompletes = {"OnNavigationCompleted"};

class Events : public IEBrowserTest {
  protected:
    /// What comes of an event.
    Lines Raised(DISPID id) {
        EXPECT_EQ(control.Raise(id), S_OK);
        return TakeTranscript();
    }

    HRESULT Invoke(DISPID id, WORD flags, DISPPARAMS* parameters) const {
        const ComPtr<IDispatch> sink = control.sink;
        return sink->Invoke(id, IID_NULL, 0, flags, parameters, nullptr, nullptr, nullptr);
    }
};

/// The event before a navigation, with its arguments as the control gives them.
class BeforeNavigation {
  public:
    explicit BeforeNavigation(const wchar_t* url) : text(SysAllocString(url)) {
        value.vt = VT_BSTR;
        value.bstrVal = text;
        arguments[0].vt = VT_BYREF | VT_BOOL;
        arguments[0].pboolVal = &cancel;
        for (size_t i = 1; i < 5; ++i) {
            arguments[i].vt = VT_BYREF | VT_VARIANT;
            arguments[i].pvarVal = &nothing;
        }
        Url().vt = VT_BYREF | VT_VARIANT;
        Url().pvarVal = &value;
        arguments[6].vt = VT_DISPATCH;
    }
    ~BeforeNavigation() { SysFreeString(text); }
    BeforeNavigation(const BeforeNavigation&) = delete;
    BeforeNavigation& operator=(const BeforeNavigation&) = delete;

    VARIANTARG& Url() { return arguments[5]; }

    /// Whether it is cancelled when it is raised.
    bool Cancelled(IDispatch* sink) {
        EXPECT_EQ(sink->Invoke(DISPID_BEFORENAVIGATE2, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr,
                               nullptr, nullptr),
                  S_OK);
        EXPECT_TRUE(cancel == VARIANT_TRUE || cancel == VARIANT_FALSE);
        return cancel != VARIANT_FALSE;
    }

    BSTR text;
    VARIANT value{};
    VARIANT nothing{};
    VARIANT_BOOL cancel = VARIANT_FALSE;
    std::array<VARIANTARG, 7> arguments{};
    DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
};

TEST_F(Events, ALinkThatOnlySaysJavascriptVoid0IsCancelledBeforeNavigation) {
    BringUp();
    for (const wchar_t* url :
         {L"javascript:void(0)", L"javascript:void(0);", L" javascript:void(0)",
          L"http://server/page#javascript:void(0)-there", L"javascript:open();javascript:void(0)"}) {
        EXPECT_TRUE(BeforeNavigation(url).Cancelled(control.sink.Get())) << url;
    }
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Events, OtherLinksAreNotCancelled) {
    BringUp();
    for (const wchar_t* url :
         {L"javascript:login()", L"javascript:void(1)", L"javascript:void 0", L"javascript: void(0)",
          L"JAVASCRIPT:VOID(0)", L"Javascript:void(0)", L"javascript:void(0", L"void(0)", L"javascript:", L"",
          L"http://server/qxcore/jsp/qvs/vislogon.jsp", L"about:blank"}) {
        EXPECT_FALSE(BeforeNavigation(url).Cancelled(control.sink.Get())) << url;
    }
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Events, ANavigationThatIsCancelledAlreadyStaysSo) {
    BringUp();
    BeforeNavigation event(L"http://server/");
    event.cancel = VARIANT_TRUE;
    EXPECT_TRUE(event.Cancelled(control.sink.Get()));
}

TEST_F(Events, TheWholeTextOfTheAddressIsSearched) {
    BringUp();
    BeforeNavigation event(L"");
    constexpr std::wstring_view kHidden(L"a\0javascript:void(0)", 20);
    SysReAllocStringLen(&event.text, kHidden.data(), static_cast<UINT>(kHidden.size()));
    event.value.bstrVal = event.text;
    EXPECT_TRUE(event.Cancelled(control.sink.Get()));
}

TEST_F(Events, AnAddressThatIsGivenDirectlyCountsToo) {
    BringUp();
    BeforeNavigation event(L"javascript:void(0)");
    event.Url() = event.value;
    EXPECT_TRUE(event.Cancelled(control.sink.Get()));
}

TEST_F(Events, AnAddressWhoseTextIsGivenByReferenceCountsToo) {
    BringUp();
    BeforeNavigation event(L"javascript:void(0)");
    event.value.vt = VT_BYREF | VT_BSTR;
    event.value.pbstrVal = &event.text;
    EXPECT_TRUE(event.Cancelled(control.sink.Get()));
    event.cancel = VARIANT_FALSE;
    event.Url() = event.value;
    EXPECT_TRUE(event.Cancelled(control.sink.Get()));
    event.cancel = VARIANT_FALSE;
    event.Url().pbstrVal = nullptr;
    EXPECT_FALSE(event.Cancelled(control.sink.Get()));
}

TEST_F(Events, AnAddressThatIsNoTextIsNotCancelled) {
    BringUp();
    BeforeNavigation event(L"javascript:void(0)");
    for (const VARTYPE type :
         std::initializer_list<VARTYPE>{VT_EMPTY, VT_I4, VT_ARRAY | VT_UI1, VT_DISPATCH}) {
        event.value.vt = type;
        EXPECT_FALSE(event.Cancelled(control.sink.Get())) << type;
    }
    event.value.vt = VT_BSTR;
    event.value.bstrVal = nullptr;
    EXPECT_FALSE(event.Cancelled(control.sink.Get()));
    event.Url().pvarVal = nullptr;
    EXPECT_FALSE(event.Cancelled(control.sink.Get()));
    event.Url().vt = VT_EMPTY;
    EXPECT_FALSE(event.Cancelled(control.sink.Get()));
}

TEST_F(Events, WithoutAPlaceForTheCancellationThereIsNone) {
    BringUp();
    BeforeNavigation event(L"javascript:void(0)");
    event.arguments[0].pboolVal = nullptr;
    EXPECT_FALSE(event.Cancelled(control.sink.Get()));
    event.arguments[0].pboolVal = &event.cancel;
    for (const VARTYPE type : std::initializer_list<VARTYPE>{VT_EMPTY, VT_BOOL, VT_BYREF | VT_I4}) {
        event.arguments[0].vt = type;
        EXPECT_FALSE(event.Cancelled(control.sink.Get())) << type;
    }
}

TEST_F(Events, AnotherNumberOfArgumentsIsNoNavigation) {
    BringUp();
    BeforeNavigation event(L"javascript:void(0)");
    for (const UINT count : {0U, 1U, 5U, 6U}) {
        event.parameters.cArgs = count;
        EXPECT_FALSE(event.Cancelled(control.sink.Get())) << count;
    }
    EXPECT_EQ(Invoke(DISPID_BEFORENAVIGATE2, DISPATCH_METHOD, nullptr), S_OK);
}

TEST_F(Events, AFailedNavigationIsOnlyTraced) {
    BringUp();
    EXPECT_EQ(Raised(DISPID_NAVIGATEERROR),
              Lines{"[0] Navigation failed. Leaving IE control visible for user to read message"});
    EXPECT_EQ(Invoke(DISPID_NAVIGATEERROR, DISPATCH_METHOD, nullptr), S_OK);
}

TEST_F(Events, InLoginModeEveryCompletedDocumentIsReported) {
    BringUp();
    EXPECT_EQ(Raised(DISPID_DOCUMENTCOMPLETE), InTurn({kInstallsHook, kCompletes}));
    EXPECT_EQ(Raised(DISPID_DOCUMENTCOMPLETE), kCompletes);
    EXPECT_EQ(Raised(DISPID_DOCUMENTCOMPLETE), kCompletes);
}

TEST_F(Events, InCheckModeTheFirstCompletedDocumentIsTheSession) {
    for (const int mode : {1, 2, -1}) {
        BringUp(mode);
        EXPECT_EQ(Raised(DISPID_DOCUMENTCOMPLETE), kReport);
        EXPECT_EQ(Raised(DISPID_DOCUMENTCOMPLETE), Lines{});
        EXPECT_EQ(control.Raise(kNorv), S_OK);
        EXPECT_EQ(TakeTranscript(),
                  Lines{"[0] ZanWebBrowser::Invoke DISPATCH_METHOD - dispIdMember == DISPID_NORV"});
        Drop();
    }
}

TEST_F(Events, OnceTheSessionIsReportedNoDocumentIs) {
    BringUp();
    Raised(kNorv);
    EXPECT_EQ(Raised(DISPID_DOCUMENTCOMPLETE), kInstallsHook);
}

TEST_F(Events, OthersAreIgnored) {
    BringUp();
    for (const DISPID id : {102, 104, 105, 106, 108, 112, 113, 251, 252, 258, 270, 0, -1, -5501}) {
        EXPECT_EQ(Raised(id), Lines{}) << id;
    }
}

TEST_F(Events, FlagsOtherThanAMethodsRaiseNothing) {
    BringUp();
    for (const WORD flags :
         std::initializer_list<WORD>{0, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF,
                                     DISPATCH_METHOD | DISPATCH_PROPERTYGET}) {
        for (const DISPID id : {DISPID_DOCUMENTCOMPLETE, DISPID_NAVIGATEERROR, DISPID_BEFORENAVIGATE2}) {
            EXPECT_EQ(Invoke(id, flags, nullptr), S_OK);
        }
    }
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Events, WithoutAnOwnerTheyAreHeardAllTheSame) {
    for (const int mode : {0, 1}) {
        MakeBrowser(mode);
        browser->Create(nullptr, parent);
        TakeTranscript();
        EXPECT_EQ(Raised(DISPID_DOCUMENTCOMPLETE), mode == 0 ? kInstallsHook : Lines{});
        EXPECT_EQ(Raised(kNorv),
                  Lines{"[0] ZanWebBrowser::Invoke DISPATCH_METHOD - dispIdMember == DISPID_NORV"});
        Drop();
        TakeTranscript();
    }
}

TEST_F(Events, TheOwnerMayTakeTheBrowserDownWhenItIsToldOfADocument) {
    BringUp();
    owner.during = [this] { browser->Destroy(); };
    EXPECT_EQ(control.Raise(DISPID_DOCUMENTCOMPLETE), S_OK);
    EXPECT_EQ(TakeTranscript().back(), "control gone");
    EXPECT_EQ(control.sink, nullptr);
    EXPECT_EQ(control.site, nullptr);
}

TEST_F(Events, TheOwnerMayTakeTheBrowserDownWhenItIsToldOfTheSession) {
    BringUp(1);
    owner.during = [this] { browser->Destroy(); };
    EXPECT_EQ(control.Raise(DISPID_DOCUMENTCOMPLETE), S_OK);
    EXPECT_EQ(TakeTranscript().back(), "control gone");
    EXPECT_EQ(control.site, nullptr);
}

TEST_F(Events, WhatTheControlRaisesInsideTheReportIsNoSecondReport) {
    BringUp(1);
    owner.during = [this] { control.Raise(DISPID_DOCUMENTCOMPLETE); };
    EXPECT_EQ(Raised(DISPID_DOCUMENTCOMPLETE), kReport);
}

TEST_F(Events, AnExceptionOfTheOwnersEndsAtTheCall) {
    BringUp();
    owner.during = [] { throw std::runtime_error("broken"); };
    EXPECT_EQ(control.Raise(DISPID_DOCUMENTCOMPLETE), E_FAIL);
    EXPECT_EQ(TakeTraceLines().back(), "[0] Failed: broken error code: -2147467259");
    EXPECT_EQ(control.Raise(kNorv), E_FAIL);
    EXPECT_EQ(TakeTraceLines().back(), "[0] Failed: broken error code: -2147467259");
    owner.during = nullptr;
    EXPECT_EQ(Raised(kNorv), Lines{"[0] ZanWebBrowser::Invoke DISPATCH_METHOD - dispIdMember == DISPID_NORV"})
        << "the session was reported";
}

TEST_F(Events, TheLackOfMemoryEndsAtTheCall) {
    BringUp();
    owner.during = [] { throw std::bad_alloc(); };
    EXPECT_EQ(control.Raise(DISPID_DOCUMENTCOMPLETE), E_OUTOFMEMORY);
}

} // namespace
} // namespace kelda
