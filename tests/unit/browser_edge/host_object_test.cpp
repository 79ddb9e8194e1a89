// The host object "external" and the object behind its member, as script reaches them through IDispatch.
#include <array>
#include <string>

#include <gtest/gtest.h>

#include "edge_browser_test.h"

using test_support::Lines;

namespace kelda {
namespace {

HRESULT IdOf(IDispatch* object, const wchar_t* name, DISPID& id) {
    std::wstring text = name;
    LPOLESTR names[] = {text.data()};
    return object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
}

class HostObject : public EdgeBrowserTest {
  protected:
    HostObject() { BringUp(); }

    IDispatch* External() const { return runtime.webView.hostObject.Get(); }

    /// What reading the member gives; owned by the browser, with one reference for the caller.
    IDispatch* ReadNorv(WORD flags = DISPATCH_PROPERTYGET) {
        VARIANT result{};
        EXPECT_EQ(External()->Invoke(kNorv, IID_NULL, 0, flags, &none, &result, nullptr, nullptr), S_OK);
        EXPECT_EQ(result.vt, VT_DISPATCH);
        return result.pdispVal;
    }
    HRESULT Call(IDispatch* object, DISPID id, WORD flags, DISPPARAMS* parameters) {
        return object->Invoke(id, IID_NULL, 0, flags, parameters, nullptr, nullptr, nullptr);
    }

    DISPPARAMS none{};
};

TEST_F(HostObject, AnswersNothingButIDispatch) {
    for (IDispatch* const object : {External(), ReadNorv()}) {
        void* answer = &none;
        EXPECT_EQ(object->QueryInterface(IID_IUnknown, &answer), E_NOINTERFACE);
        EXPECT_EQ(answer, nullptr);
        EXPECT_EQ(object->QueryInterface(IID_IStream, &answer), E_NOINTERFACE);
        EXPECT_EQ(object->QueryInterface(IID_IDispatch, &answer), S_OK);
        EXPECT_EQ(answer, object);
        object->Release();
        EXPECT_EQ(object->QueryInterface(IID_IDispatch, nullptr), E_POINTER);
    }
}

TEST_F(HostObject, CountsButIsNeverDeletedByIt) {
    for (IDispatch* const object : {External(), ReadNorv()}) {
        const ULONG count = object->AddRef();
        EXPECT_EQ(object->Release(), count - 1);
        EXPECT_EQ(object->Release(), count - 2);
        EXPECT_EQ(object->AddRef(), count - 1); // still there
    }
}

TEST_F(HostObject, HasNoTypeInformation) {
    for (IDispatch* const object : {External(), ReadNorv()}) {
        UINT count = 7;
        EXPECT_EQ(object->GetTypeInfoCount(&count), S_OK);
        EXPECT_EQ(count, 0U);
        EXPECT_EQ(object->GetTypeInfoCount(nullptr), E_POINTER);
        auto* info = reinterpret_cast<ITypeInfo*>(&count);
        EXPECT_EQ(object->GetTypeInfo(0, 0, &info), E_NOTIMPL);
        EXPECT_EQ(info, nullptr);
        EXPECT_EQ(object->GetTypeInfo(0, 0, nullptr), E_NOTIMPL);
    }
}

TEST_F(HostObject, KnowsItsMemberByItsExactNameOnly) {
    DISPID id = 0;
    EXPECT_EQ(IdOf(External(), L"norv", id), S_OK);
    EXPECT_EQ(id, kNorv);
    for (const wchar_t* name : {L"Norv", L"norv2", L"nor", L"", L" norv"}) {
        EXPECT_EQ(IdOf(External(), name, id), E_NOTIMPL);
    }
}

TEST_F(HostObject, AnswersOnlyForTheFirstOfSeveralNames) {
    std::array<wchar_t, 5> norv = {L"norv"};
    std::array<wchar_t, 6> other = {L"other"};
    LPOLESTR names[] = {norv.data(), other.data()};
    DISPID ids[] = {1, 2};
    EXPECT_EQ(External()->GetIDsOfNames(IID_NULL, names, 2, 0, ids), S_OK);
    EXPECT_EQ(ids[0], kNorv);
    EXPECT_EQ(ids[1], 2);
    EXPECT_EQ(External()->GetIDsOfNames(IID_NULL, names, 0, 0, ids), E_NOTIMPL);
}

TEST_F(HostObject, AskedForAnIdWithoutNamesOrWithoutAPlaceForItKnowsNone) {
    std::array<wchar_t, 5> norv = {L"norv"};
    LPOLESTR names[] = {norv.data()};
    DISPID id = 1;
    EXPECT_EQ(External()->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id), E_NOTIMPL);
    EXPECT_EQ(External()->GetIDsOfNames(IID_NULL, names, 1, 0, nullptr), E_NOTIMPL);
    names[0] = nullptr;
    EXPECT_EQ(External()->GetIDsOfNames(IID_NULL, names, 1, 0, &id), E_NOTIMPL);
    EXPECT_EQ(id, 1);
}

TEST_F(HostObject, ReadingTheMemberGivesAnObjectWithAReferenceOfItsOwn) {
    IDispatch* const first = ReadNorv();
    EXPECT_EQ(TakeTranscript(), Lines{kPropertyRead});
    IDispatch* const second = ReadNorv(DISPATCH_PROPERTYGET | DISPATCH_METHOD);
    EXPECT_EQ(first, second);
    EXPECT_EQ(second->Release(), 1U);
    EXPECT_EQ(first->Release(), 0U);
}

TEST_F(HostObject, EveryOtherUseOfItDoesNothing) {
    VARIANT result{};
    EXPECT_EQ(External()->Invoke(kNorv, IID_NULL, 0, DISPATCH_METHOD, &none, &result, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(External()->Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(
        External()->Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_METHOD, &none, &result, nullptr, nullptr),
        S_OK);
    EXPECT_EQ(External()->Invoke(kNorv, IID_NULL, 0, DISPATCH_PROPERTYPUT, &none, &result, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(result.vt, VT_EMPTY);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(HostObject, ReadingTheMemberWithNoPlaceForItIsTracedAndGivesNothing) {
    EXPECT_EQ(External()->Invoke(kNorv, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{kPropertyRead});
    EXPECT_EQ(ReadNorv()->Release(), 0U) << "a reference was given to nobody";
}

TEST_F(HostObject, TheMemberKnowsNoNames) {
    IDispatch* const norv = ReadNorv();
    DISPID id = 0;
    EXPECT_EQ(IdOf(norv, L"norv", id), E_NOTIMPL);
    norv->Release();
}

TEST_F(HostObject, CallingTheMemberReportsTheSessionOnce) {
    IDispatch* const norv = ReadNorv();
    for (int call = 0; call < 2; ++call) {
        TakeTranscript();
        EXPECT_EQ(Call(norv, DISPID_VALUE, DISPATCH_METHOD, &none), S_OK);
        EXPECT_EQ(TakeTranscript(), (Lines{kCalled, kAsksForCookies}));
        runtime.CompleteCookies();
        TakeTranscript();
        FireTimer();
        EXPECT_EQ(TakeTranscript(), call == 0 ? kReport : Lines{});
    }
    norv->Release();
}

TEST_F(HostObject, TheFlagsOfTheCallAreNotLookedAt) {
    IDispatch* const norv = ReadNorv();
    TakeTranscript();
    EXPECT_EQ(Call(norv, DISPID_VALUE, DISPATCH_PROPERTYGET, &none), S_OK);
    EXPECT_EQ(TakeTranscript(), (Lines{kCalled, kAsksForCookies}));
    norv->Release();
}

TEST_F(HostObject, CallingTheMemberByAnotherIdOrWithoutParametersDoesNothing) {
    IDispatch* const norv = ReadNorv();
    TakeTranscript();
    EXPECT_EQ(Call(norv, kNorv, DISPATCH_METHOD, &none), S_OK);
    EXPECT_EQ(Call(norv, DISPID_VALUE, DISPATCH_METHOD, nullptr), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{});
    norv->Release();
}

} // namespace
} // namespace kelda
