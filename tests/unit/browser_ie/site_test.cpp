// What the control is answered by its container, interface by interface.
#include <array>

#include <gtest/gtest.h>

#include <windows.h>

#include <docobj.h>
#include <exdispid.h>
#include <mshtmhst.h>
#include <wrl/client.h>

#include "ie_browser_test.h"

using Microsoft::WRL::ComPtr;
using test_support::Lines;

namespace kelda {
namespace {

/// A place for an answer that is to be overwritten.
template <typename Interface>
Interface* Stale() {
    return reinterpret_cast<Interface*>(0x4716);
}

class Site : public IEBrowserTest {
  protected:
    Site() { BringUp(); }
};

TEST_F(Site, AnswersItsInterfacesAndNoOthers) {
    for (const IID& iid :
         {IID_IUnknown, IID_IOleClientSite, IID_IOleWindow, IID_IOleInPlaceSite, IID_IOleCommandTarget,
          IID_IStorage, IID_IDocHostUIHandler, IID_IDispatch, DIID_DWebBrowserEvents2}) {
        ComPtr<IUnknown> answer;
        EXPECT_EQ(control.site->QueryInterface(iid, reinterpret_cast<void**>(answer.GetAddressOf())), S_OK);
        EXPECT_NE(answer, nullptr);
    }
    HWND window = nullptr;
    EXPECT_EQ(control.Site<IOleWindow>()->GetWindow(&window), S_OK);
    EXPECT_EQ(window, parent);
    ComPtr<IDispatch> sink;
    EXPECT_EQ(
        control.site->QueryInterface(DIID_DWebBrowserEvents2, reinterpret_cast<void**>(sink.GetAddressOf())),
        S_OK);
    EXPECT_EQ(sink, control.Site<IDispatch>());
    for (const IID& iid : {IID_IOleControlSite, IID_IServiceProvider, IID_IOleInPlaceFrame, IID_IOleContainer,
                           IID_IPersist, IID_NULL}) {
        void* answer = Stale<void>();
        EXPECT_EQ(control.site->QueryInterface(iid, &answer), E_NOINTERFACE);
        EXPECT_EQ(answer, nullptr);
    }
    EXPECT_EQ(control.site->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(Site, IsOneObject) {
    ComPtr<IUnknown> identity;
    control.site->QueryInterface(IID_PPV_ARGS(identity.GetAddressOf()));
    const ComPtr<IUnknown> others[] = {control.Site<IOleInPlaceSite>(), control.Site<IOleCommandTarget>(),
                                       control.Site<IStorage>(), control.Site<IDocHostUIHandler>(),
                                       control.Site<IDispatch>()};
    for (const ComPtr<IUnknown>& other : others) {
        ComPtr<IUnknown> same;
        other->QueryInterface(IID_PPV_ARGS(same.GetAddressOf()));
        EXPECT_EQ(same.Get(), identity.Get());
    }
}

TEST_F(Site, CountsForAllItsInterfacesTogetherButIsNeverDestroyedByIt) {
    const ComPtr<IDispatch> other = control.Site<IDispatch>();
    const ULONG count = control.site->AddRef();
    EXPECT_EQ(other->AddRef(), count + 1);
    EXPECT_EQ(control.site->Release(), count);
    EXPECT_EQ(other->Release(), count - 1);

    IOleClientSite* const site = control.site.Get();
    for (ULONG left = count - 1; left > 0; --left) {
        EXPECT_EQ(site->Release(), left - 1);
    }
    EXPECT_EQ(site->ShowObject(), S_OK) << "still there";
    for (ULONG back = 1; back < count; ++back) {
        EXPECT_EQ(site->AddRef(), back);
    }
}

TEST_F(Site, HasNothingToSaveAndNoContainer) {
    IOleClientSite* const site = control.site.Get();
    EXPECT_EQ(site->SaveObject(), E_NOTIMPL);
    auto* moniker = Stale<IMoniker>();
    EXPECT_EQ(site->GetMoniker(OLEGETMONIKER_ONLYIFTHERE, OLEWHICHMK_CONTAINER, &moniker), E_NOTIMPL);
    EXPECT_EQ(moniker, nullptr);
    EXPECT_EQ(site->GetMoniker(OLEGETMONIKER_ONLYIFTHERE, OLEWHICHMK_CONTAINER, nullptr), E_NOTIMPL);
    auto* container = Stale<IOleContainer>();
    EXPECT_EQ(site->GetContainer(&container), E_NOINTERFACE);
    EXPECT_EQ(container, nullptr);
    EXPECT_EQ(site->GetContainer(nullptr), E_NOINTERFACE);
    EXPECT_EQ(site->ShowObject(), S_OK);
    EXPECT_EQ(site->OnShowWindow(TRUE), S_OK);
    EXPECT_EQ(site->RequestNewObjectLayout(), E_NOTIMPL);
}

TEST_F(Site, LetsTheControlBeActiveInPlaceAndLeavesTheRestToNobody) {
    const auto place = control.Site<IOleInPlaceSite>();
    EXPECT_EQ(place->ContextSensitiveHelp(TRUE), E_NOTIMPL);
    EXPECT_EQ(place->CanInPlaceActivate(), S_OK);
    EXPECT_EQ(place->OnUIActivate(), S_OK);
    EXPECT_EQ(place->OnUIDeactivate(FALSE), S_OK);
    EXPECT_EQ(place->Scroll({1, 2}), E_NOTIMPL);
    EXPECT_EQ(place->DiscardUndoState(), E_NOTIMPL);
    EXPECT_EQ(place->DeactivateAndUndo(), E_NOTIMPL);
    EXPECT_EQ(place->OnPosRectChange(&clientRect), E_NOTIMPL);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Site, IsInTheWindowOfTheOwner) {
    HWND window = nullptr;
    EXPECT_EQ(control.Site<IOleInPlaceSite>()->GetWindow(&window), S_OK);
    EXPECT_EQ(window, parent);
    EXPECT_EQ(control.Site<IOleInPlaceSite>()->GetWindow(nullptr), E_POINTER);
}

TEST_F(Site, TheActivatedControlIsLockedAndFitted) {
    const auto place = control.Site<IOleInPlaceSite>();
    EXPECT_EQ(place->OnInPlaceActivate(), S_OK);
    EXPECT_EQ(TakeTranscript(),
              (Lines{"OleLockRunning the control 1 0", "control.QueryInterface IOleInPlaceObject",
                     "inPlaceObject.SetObjectRects 0,0 640x480 0,0 640x480"}));
}

TEST_F(Site, TheDeactivatedControlIsUnlockedAndFittedNoMore) {
    const auto place = control.Site<IOleInPlaceSite>();
    EXPECT_EQ(place->OnInPlaceDeactivate(), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{"OleLockRunning the control 0 0"});
    browser->Resize();
    EXPECT_EQ(TakeTranscript(), (Lines{"GetClientRect of the parent", "oleObject.SetExtent 1 16933x10160"}));
}

TEST_F(Site, TheDeactivatedControlHasNoWindow) {
    EXPECT_NE(browser->GetWindowHandle(), nullptr);
    control.Site<IOleInPlaceSite>()->OnInPlaceDeactivate();
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
}

TEST_F(Site, AControlThatIsGoneIsNeitherLockedNorUnlocked) {
    const auto place = control.Site<IOleInPlaceSite>();
    browser->Destroy();
    TakeTranscript();
    EXPECT_EQ(place->OnInPlaceActivate(), S_OK);
    EXPECT_EQ(place->OnInPlaceDeactivate(), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Site, GivesTheControlNoFrameButItsTopLevelWindow) {
    const test_support::ReplacedImport<struct Ancestor, decltype(GetAncestor)> getAncestor(
        "user32.dll", "GetAncestor", [this](HWND window, UINT kind) -> HWND {
            return window == parent && kind == GA_ROOT ? reinterpret_cast<HWND>(0x4717) : nullptr;
        });
    auto* frame = Stale<IOleInPlaceFrame>();
    auto* document = Stale<IOleInPlaceUIWindow>();
    RECT position{};
    RECT clip{};
    OLEINPLACEFRAMEINFO info{};
    std::memset(&info, 0xCC, sizeof(info));
    info.cb = 33;
    const auto place = control.Site<IOleInPlaceSite>();
    EXPECT_EQ(place->GetWindowContext(&frame, &document, &position, &clip, &info), S_OK);
    EXPECT_EQ(frame, nullptr);
    EXPECT_EQ(document, nullptr);
    EXPECT_TRUE(EqualRect(&position, &clientRect));
    EXPECT_TRUE(EqualRect(&clip, &clientRect));
    EXPECT_EQ(info.cb, 33U) << "the control's own";
    EXPECT_EQ(info.fMDIApp, FALSE);
    EXPECT_EQ(info.hwndFrame, reinterpret_cast<HWND>(0x4717));
    EXPECT_EQ(info.haccel, nullptr);
    EXPECT_EQ(info.cAccelEntries, 0U);
}

TEST_F(Site, AskedForItsContextWithoutAPlaceForItGivesNone) {
    auto* frame = Stale<IOleInPlaceFrame>();
    auto* document = Stale<IOleInPlaceUIWindow>();
    RECT position{};
    RECT clip{};
    OLEINPLACEFRAMEINFO info{};
    const auto place = control.Site<IOleInPlaceSite>();
    EXPECT_EQ(place->GetWindowContext(nullptr, &document, &position, &clip, &info), E_POINTER);
    EXPECT_EQ(document, nullptr);
    EXPECT_EQ(place->GetWindowContext(&frame, nullptr, &position, &clip, &info), E_POINTER);
    EXPECT_EQ(frame, nullptr);
    EXPECT_EQ(place->GetWindowContext(&frame, &document, nullptr, &clip, &info), E_POINTER);
    EXPECT_EQ(place->GetWindowContext(&frame, &document, &position, nullptr, &info), E_POINTER);
    EXPECT_EQ(place->GetWindowContext(&frame, &document, &position, &clip, nullptr), E_POINTER);
}

TEST_F(Site, KnowsTheStatusOfNoCommand) {
    OLECMD command{OLECMDID_SHOWSCRIPTERROR, 0};
    EXPECT_EQ(control.Site<IOleCommandTarget>()->QueryStatus(nullptr, 1, &command, nullptr),
              OLECMDERR_E_UNKNOWNGROUP);
    EXPECT_EQ(control.Site<IOleCommandTarget>()->QueryStatus(&IID_NULL, 0, nullptr, nullptr),
              OLECMDERR_E_UNKNOWNGROUP);
}

TEST_F(Site, TheStorageTakesTheClassAndNothingElse) {
    IStorage* const storage = control.storage;
    IStream* stream = nullptr;
    IStorage* inner = nullptr;
    IEnumSTATSTG* elements = nullptr;
    STATSTG statistics{};
    const FILETIME time{};
    EXPECT_EQ(storage->SetClass(CLSID_WebBrowser), S_OK);
    EXPECT_EQ(storage->CreateStream(L"a", STGM_READWRITE, 0, 0, &stream), E_NOTIMPL);
    EXPECT_EQ(storage->OpenStream(L"a", nullptr, STGM_READ, 0, &stream), E_NOTIMPL);
    EXPECT_EQ(storage->CreateStorage(L"a", STGM_READWRITE, 0, 0, &inner), E_NOTIMPL);
    EXPECT_EQ(storage->OpenStorage(L"a", nullptr, STGM_READ, nullptr, 0, &inner), E_NOTIMPL);
    EXPECT_EQ(storage->CopyTo(0, nullptr, nullptr, storage), E_NOTIMPL);
    EXPECT_EQ(storage->MoveElementTo(L"a", storage, L"b", STGMOVE_COPY), E_NOTIMPL);
    EXPECT_EQ(storage->Commit(STGC_DEFAULT), E_NOTIMPL);
    EXPECT_EQ(storage->Revert(), E_NOTIMPL);
    EXPECT_EQ(storage->EnumElements(0, nullptr, 0, &elements), E_NOTIMPL);
    EXPECT_EQ(storage->DestroyElement(L"a"), E_NOTIMPL);
    EXPECT_EQ(storage->RenameElement(L"a", L"b"), E_NOTIMPL);
    EXPECT_EQ(storage->SetElementTimes(L"a", &time, &time, &time), E_NOTIMPL);
    EXPECT_EQ(storage->SetStateBits(1, 1), E_NOTIMPL);
    EXPECT_EQ(storage->Stat(&statistics, STATFLAG_NONAME), E_NOTIMPL);
}

TEST_F(Site, WantsFormsCompletedAndNothingElse) {
    DOCHOSTUIINFO info{};
    std::memset(&info, 0xCC, sizeof(info));
    const DOCHOSTUIINFO before = info;
    EXPECT_EQ(control.Site<IDocHostUIHandler>()->GetHostInfo(&info), S_OK);
    EXPECT_EQ(info.dwFlags, 0x4000U);
    EXPECT_EQ(info.cbSize, before.cbSize);
    EXPECT_EQ(info.dwDoubleClick, before.dwDoubleClick);
    EXPECT_EQ(info.pchHostCss, before.pchHostCss);
    EXPECT_EQ(control.Site<IDocHostUIHandler>()->GetHostInfo(nullptr), E_POINTER);
}

TEST_F(Site, TheHostOfThePageAddsNothingToTheControl) {
    const auto host = control.Site<IDocHostUIHandler>();
    POINT position{};
    MSG message{};
    EXPECT_EQ(host->ShowContextMenu(0, &position, nullptr, nullptr), S_OK)
        << "the control would show its own";
    EXPECT_EQ(host->ShowUI(0, nullptr, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(host->HideUI(), S_OK);
    EXPECT_EQ(host->UpdateUI(), S_OK);
    EXPECT_EQ(host->EnableModeless(FALSE), S_OK);
    EXPECT_EQ(host->OnDocWindowActivate(TRUE), S_OK);
    EXPECT_EQ(host->OnFrameWindowActivate(TRUE), S_OK);
    EXPECT_EQ(host->ResizeBorder(&clientRect, nullptr, TRUE), S_OK);
    EXPECT_EQ(host->TranslateAccelerator(&message, nullptr, 0), S_FALSE);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Site, TheHostOfThePageReplacesNothing) {
    const auto host = control.Site<IDocHostUIHandler>();
    auto* key = Stale<OLECHAR>();
    EXPECT_EQ(host->GetOptionKeyPath(&key, 0), S_OK);
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(host->GetOptionKeyPath(nullptr, 0), S_OK);
    auto* target = Stale<IDropTarget>();
    EXPECT_EQ(host->GetDropTarget(nullptr, &target), S_OK);
    EXPECT_EQ(target, nullptr);
    EXPECT_EQ(host->GetDropTarget(nullptr, nullptr), S_OK);
    std::array<OLECHAR, 2> url = {L"u"};
    auto* translated = Stale<OLECHAR>();
    EXPECT_EQ(host->TranslateUrl(0, url.data(), &translated), S_OK);
    EXPECT_EQ(translated, nullptr);
    EXPECT_EQ(host->TranslateUrl(0, url.data(), nullptr), S_OK);
    auto* filtered = Stale<IDataObject>();
    EXPECT_EQ(host->FilterDataObject(nullptr, &filtered), S_OK);
    EXPECT_EQ(filtered, nullptr);
    EXPECT_EQ(host->FilterDataObject(nullptr, nullptr), S_OK);
}

TEST_F(Site, TheExternalObjectComesWithAReference) {
    const auto host = control.Site<IDocHostUIHandler>();
    const ULONG count = host->AddRef();
    IDispatch* external = nullptr;
    EXPECT_EQ(host->GetExternal(&external), S_OK);
    EXPECT_EQ(external, control.sink.Get());
    EXPECT_EQ(external->Release(), count);
    host->Release();
    EXPECT_EQ(host->GetExternal(nullptr), E_POINTER);
}

} // namespace
} // namespace kelda
