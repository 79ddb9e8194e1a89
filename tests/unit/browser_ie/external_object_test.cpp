// What pages have as window.external.
#include <array>
#include <string>

#include <gtest/gtest.h>

#include <windows.h>

#include <mshtmhst.h>
#include <wrl/client.h>

#include "ie_browser_test.h"

using Microsoft::WRL::ComPtr;
using test_support::InTurn;
using test_support::Lines;

namespace kelda {
namespace {

const Lines kRead = {"[0] ZanWebBrowser::Invoke DISPATCH_PROPERTYGET - dispIdMember == DISPID_NORV"};
const Lines kCalled = {"[0] ZanWebBrowser::Invoke DISPATCH_METHOD - dispIdMember == DISPID_NORV"};

class ExternalObject : public IEBrowserTest {
  protected:
    ExternalObject() {
        BringUp();
        control.Site<IDocHostUIHandler>()->GetExternal(external.GetAddressOf());
    }

    HRESULT IdOf(const wchar_t* name, DISPID& id) const {
        std::wstring text = name;
        LPOLESTR names[] = {text.data()};
        return external->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    }
    HRESULT Invoke(DISPID id, WORD flags, VARIANT* result = nullptr) {
        return external->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &none, result, nullptr, nullptr);
    }

    ComPtr<IDispatch> external;
    DISPPARAMS none{};
};

TEST_F(ExternalObject, KnowsItsMemberByItsExactNameOnly) {
    DISPID id = 0;
    EXPECT_EQ(IdOf(L"norv", id), S_OK);
    EXPECT_EQ(id, 888111888);
    for (const wchar_t* name : {L"Norv", L"NORV", L"norv2", L"nor", L"", L" norv"}) {
        EXPECT_EQ(IdOf(name, id), DISP_E_UNKNOWNNAME);
        EXPECT_EQ(id, DISPID_UNKNOWN);
    }
}

TEST_F(ExternalObject, ItsMemberHasNoNamedArguments) {
    std::array<wchar_t, 5> norv = {L"norv"};
    std::array<wchar_t, 6> other = {L"other"};
    LPOLESTR names[] = {norv.data(), other.data()};
    DISPID ids[] = {1, 2};
    EXPECT_EQ(external->GetIDsOfNames(IID_NULL, names, 2, 0, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[1], DISPID_UNKNOWN);
}

TEST_F(ExternalObject, AskedForAnIdWithoutNamesOrWithoutAPlaceForItKnowsNone) {
    std::array<wchar_t, 5> norv = {L"norv"};
    LPOLESTR names[] = {norv.data()};
    DISPID id = 1;
    EXPECT_EQ(external->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id), E_INVALIDARG);
    EXPECT_EQ(external->GetIDsOfNames(IID_NULL, names, 1, 0, nullptr), E_INVALIDARG);
    EXPECT_EQ(external->GetIDsOfNames(IID_NULL, names, 0, 0, &id), E_INVALIDARG);
    EXPECT_EQ(id, 1);
    names[0] = nullptr;
    EXPECT_EQ(external->GetIDsOfNames(IID_NULL, names, 1, 0, &id), DISP_E_UNKNOWNNAME);
}

TEST_F(ExternalObject, HasNoTypeInformation) {
    UINT count = 7;
    EXPECT_EQ(external->GetTypeInfoCount(&count), E_NOTIMPL);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(external->GetTypeInfoCount(nullptr), E_NOTIMPL);
    auto* info = reinterpret_cast<ITypeInfo*>(&count);
    EXPECT_EQ(external->GetTypeInfo(0, 0, &info), E_NOTIMPL);
    EXPECT_EQ(info, nullptr);
    EXPECT_EQ(external->GetTypeInfo(0, 0, nullptr), E_NOTIMPL);
}

TEST_F(ExternalObject, ReadingTheMemberGivesTheObjectItselfWithAReference) {
    const ULONG count = external->AddRef();
    VARIANT result{};
    EXPECT_EQ(Invoke(kNorv, DISPATCH_PROPERTYGET, &result), S_OK);
    ASSERT_EQ(result.vt, VT_DISPATCH);
    EXPECT_EQ(result.pdispVal, external.Get());
    EXPECT_EQ(result.pdispVal->Release(), count);
    external->Release();
    EXPECT_EQ(TakeTranscript(), kRead);
}

TEST_F(ExternalObject, AReadThatMayBeACallIsARead) {
    VARIANT result{};
    EXPECT_EQ(Invoke(kNorv, DISPATCH_PROPERTYGET | DISPATCH_METHOD, &result), S_OK);
    ASSERT_EQ(result.vt, VT_DISPATCH);
    result.pdispVal->Release();
    EXPECT_EQ(TakeTranscript(), kRead);
}

TEST_F(ExternalObject, ReadingTheMemberWithNoPlaceForItIsTracedAndGivesNothing) {
    const ULONG count = external->AddRef();
    EXPECT_EQ(Invoke(kNorv, DISPATCH_PROPERTYGET), S_OK);
    EXPECT_EQ(TakeTranscript(), kRead);
    EXPECT_EQ(external->Release(), count - 1);
}

TEST_F(ExternalObject, ReadingAnythingElseGivesNothing) {
    VARIANT result{};
    for (const DISPID id : {0, 1, 271, -5501, -5502, -5512}) {
        EXPECT_EQ(Invoke(id, DISPATCH_PROPERTYGET, &result), S_OK);
        EXPECT_EQ(result.vt, VT_EMPTY);
    }
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(ExternalObject, CallingTheMemberReportsTheSessionOnce) {
    EXPECT_EQ(Invoke(kNorv, DISPATCH_METHOD), S_OK);
    EXPECT_EQ(TakeTranscript(), InTurn({kCalled, kReport}));
    EXPECT_EQ(Invoke(kNorv, DISPATCH_METHOD), S_OK);
    EXPECT_EQ(TakeTranscript(), kCalled);
}

TEST_F(ExternalObject, CallingTheMemberNeedsNoParameters) {
    EXPECT_EQ(external->Invoke(kNorv, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(TakeTranscript(), InTurn({kCalled, kReport}));
}

TEST_F(ExternalObject, SettingTheMemberDoesNothing) {
    EXPECT_EQ(Invoke(kNorv, DISPATCH_PROPERTYPUT), S_OK);
    EXPECT_EQ(Invoke(kNorv, 0), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(ExternalObject, TheOwnerMayTakeTheBrowserDownInsideThePagesCall) {
    owner.during = [this] { browser->Destroy(); };
    EXPECT_EQ(Invoke(kNorv, DISPATCH_METHOD), S_OK);
    EXPECT_EQ(TakeTranscript().back(), "control gone");
}

TEST_F(ExternalObject, ACallOfThePageAfterTheTeardownReachesNobody) {
    browser->Destroy();
    TakeTranscript();
    EXPECT_EQ(Invoke(kNorv, DISPATCH_METHOD), S_OK);
    EXPECT_EQ(TakeTranscript(), kCalled);
}

TEST_F(ExternalObject, APageThatReadsTheMemberAndCallsWhatItGivesReportsTheSession) {
    VARIANT member{};
    DISPID id = 0;
    ASSERT_EQ(IdOf(L"norv", id), S_OK);
    ASSERT_EQ(Invoke(id, DISPATCH_PROPERTYGET, &member), S_OK);
    ASSERT_EQ(member.vt, VT_DISPATCH);
    EXPECT_EQ(member.pdispVal->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              S_OK);
    member.pdispVal->Release();
    EXPECT_EQ(TakeTranscript(), InTurn({kRead, kCalled, kReport}));
}

} // namespace
} // namespace kelda
