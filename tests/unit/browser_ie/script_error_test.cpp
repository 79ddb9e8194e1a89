// Errors of the page's scripts, as the control tells its container of them.
#include <initializer_list>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include <windows.h>

#include <docobj.h>
#include <wrl/client.h>

#include "ie_browser_test.h"
#include "tests/support/ole/fake_document.h"

using Microsoft::WRL::ComPtr;
using test_support::FakeDocument;
using test_support::FakeEvent;
using test_support::FakeField;
using test_support::Lines;
using test_support::MakeFake;

namespace kelda {
namespace {

constexpr GUID kDocHostCommands = {
    0xF38BC242, 0xB950, 0x11D1, {0x89, 0x18, 0x00, 0xC0, 0x4F, 0xC2, 0xC8, 0x36}};
constexpr DWORD kShowScriptError = 40;

constexpr const char* kNothingKnown =
    "[0] Script error: errorUrl: , errorMessage: , errorCode: , errorLine: , errorCharacter: ";

constexpr const char* kTraced =
    "[0] Script error: errorUrl: http://server/login.js, "
    "errorMessage: 'foo' is undefined, errorCode: 0, errorLine: 17, errorCharacter: 5";

class ScriptError : public IEBrowserTest {
  protected:
    ScriptError() {
        BringUp();
        fields[L"errorUrl"] = L"http://server/login.js";
        fields[L"errorMessage"] = L"'foo' is undefined";
        fields[L"errorCode"] = 0L;
        fields[L"errorLine"] = 17;
        fields[L"errorCharacter"] = 5;
        document = MakeFake<FakeDocument>(control.script, fields);
        input.vt = VT_DISPATCH;
        input.pdispVal = document.Get();
        TakeTranscript();
    }

    HRESULT Exec(const GUID* group, DWORD command, VARIANT* in, VARIANT* out) const {
        return control.Site<IOleCommandTarget>()->Exec(group, command, OLECMDEXECOPT_DODEFAULT, in, out);
    }

    /// What is traced when the control tells of an error, of which the page is to hear nothing.
    std::string Told(VARIANT* in) {
        VARIANT goOn{};
        EXPECT_EQ(Exec(&kDocHostCommands, kShowScriptError, in, &goOn), S_OK);
        EXPECT_EQ(goOn.vt, VT_BOOL);
        EXPECT_EQ(goOn.boolVal, VARIANT_TRUE);
        const Lines lines = TakeTraceLines();
        EXPECT_EQ(lines.size(), 1U);
        return lines.empty() ? "" : lines[0];
    }

    FakeEvent::Fields fields;
    ComPtr<FakeDocument> document;
    VARIANT input{};
};

TEST_F(ScriptError, IsReadFieldByFieldAndTracedAndTheScriptsGoOn) {
    VARIANT goOn{};
    EXPECT_EQ(Exec(&kDocHostCommands, kShowScriptError, &input, &goOn), S_OK);
    EXPECT_EQ(
        TakeTranscript(),
        (Lines{"document.QueryInterface IHTMLDocument2", "document.get_parentWindow", "window.get_event",
               "event.QueryInterface IDispatch", "window gone", "event.GetIDsOfNames errorUrl",
               "event.Invoke errorUrl 2", "event.GetIDsOfNames errorMessage", "event.Invoke errorMessage 2",
               "event.GetIDsOfNames errorCode", "event.Invoke errorCode 2", "event.GetIDsOfNames errorLine",
               "event.Invoke errorLine 2", "event.GetIDsOfNames errorCharacter",
               "event.Invoke errorCharacter 2", kTraced, "event gone"}));
    EXPECT_EQ(goOn.vt, VT_BOOL);
    EXPECT_EQ(goOn.boolVal, VARIANT_TRUE);
    EXPECT_EQ(document->Count(), 1U);
}

TEST_F(ScriptError, TheDocumentMayComeAsAnyKindOfObject) {
    input.vt = VT_UNKNOWN;
    EXPECT_EQ(Told(&input), kTraced);
}

TEST_F(ScriptError, WithoutADocumentItIsTracedWithoutFields) {
    EXPECT_EQ(Told(nullptr), kNothingKnown);
    VARIANT none{};
    EXPECT_EQ(Told(&none), kNothingKnown);
    none.vt = VT_DISPATCH;
    EXPECT_EQ(Told(&none), kNothingKnown);
    none.vt = VT_I4;
    none.lVal = 7;
    EXPECT_EQ(Told(&none), kNothingKnown);
}

TEST_F(ScriptError, WhicheverStepFailsItIsTracedAndTheScriptsGoOn) {
    for (const char* step : {"document.QueryInterface", "document.get_parentWindow", "window.get_event",
                             "event.QueryInterface", "event.GetIDsOfNames", "event.Invoke"}) {
        SCOPED_TRACE(step);
        control.script.answers = {{step, E_FAIL}};
        EXPECT_EQ(Told(&input), kNothingKnown);
    }
}

TEST_F(ScriptError, AFieldThatCannotBeReadIsEmptyAndTheOthersAreNot) {
    control.script.answers = {{"event.Invoke errorMessage 2", E_FAIL}};
    fields.erase(L"errorLine");
    EXPECT_EQ(Told(&input), "[0] Script error: errorUrl: http://server/login.js, errorMessage: , "
                            "errorCode: 0, errorLine: , errorCharacter: 5");
}

TEST_F(ScriptError, FieldsMayBeTextsOrNumbersOfEveryKind) {
    fields[L"errorUrl"] = 12;
    fields[L"errorMessage"] = L"\u00E4\u20AC";
    fields[L"errorCode"] = -2146823281;
    fields[L"errorLine"] = L"seventeen";
    FakeField& character = fields[L"errorCharacter"];
    character.vt = VT_R8;
    character.dblVal = 2.5;
    EXPECT_EQ(Told(&input), "[0] Script error: errorUrl: 12, errorMessage: \xC3\xA4\xE2\x82\xAC, "
                            "errorCode: -2146823281, errorLine: seventeen, errorCharacter: 2.5");
    character.vt = VT_UI4;
    character.ulVal = 4294967295U;
    fields[L"errorMessage"] = L"";
    EXPECT_EQ(Told(&input), "[0] Script error: errorUrl: 12, errorMessage: , "
                            "errorCode: -2146823281, errorLine: seventeen, errorCharacter: 4294967295");
}

TEST_F(ScriptError, TextsAreCutAfter4096Characters) {
    const std::wstring longText(100'000, L'x');
    fields[L"errorUrl"] = longText.c_str();
    fields[L"errorMessage"] = longText.c_str();
    const std::string shown(4096, 'x');
    EXPECT_EQ(Told(&input), "[0] Script error: errorUrl: " + shown + ", errorMessage: " + shown +
                                ", errorCode: 0, errorLine: 17, errorCharacter: 5");
}

TEST_F(ScriptError, NumbersMayBeOfOneByte) {
    FakeField& line = fields[L"errorLine"];
    line = 0L;
    line.vt = VT_UI1;
    line.bVal = 200;
    FakeField& character = fields[L"errorCharacter"];
    character.vt = VT_I1;
    character.cVal = -3;
    EXPECT_EQ(Told(&input), "[0] Script error: errorUrl: http://server/login.js, errorMessage: 'foo' is "
                            "undefined, errorCode: 0, errorLine: 200, errorCharacter: -3");
}

TEST_F(ScriptError, WithoutTheMemoryForItsLineTheScriptsGoOn) {
    control.script.during["event.Invoke"] = [] { throw std::bad_alloc(); };
    VARIANT goOn{};
    EXPECT_EQ(Exec(&kDocHostCommands, kShowScriptError, &input, &goOn), S_OK);
    EXPECT_EQ(goOn.vt, VT_BOOL);
    EXPECT_EQ(goOn.boolVal, VARIANT_TRUE);
    const Lines lines = TakeTraceLines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].starts_with("[0] Failed: ") && lines[0].ends_with(" error code: -2147024882"))
        << lines[0];
}

TEST_F(ScriptError, FieldsThatAreNeitherAreEmpty) {
    for (const VARTYPE type : std::initializer_list<VARTYPE>{VT_EMPTY, VT_NULL, VT_ERROR, VT_BOOL}) {
        fields[L"errorLine"] = 0L;
        fields[L"errorLine"].vt = type;
        EXPECT_EQ(Told(&input), "[0] Script error: errorUrl: http://server/login.js, errorMessage: 'foo' is "
                                "undefined, errorCode: 0, errorLine: , errorCharacter: 5");
    }
}

TEST_F(ScriptError, EveryOneHasItsLine) {
    for (int error = 0; error < 3; ++error) {
        EXPECT_EQ(Told(&input), kTraced);
    }
}

TEST_F(ScriptError, NoPlaceForTheAnswerIsNeeded) {
    EXPECT_EQ(Exec(&kDocHostCommands, kShowScriptError, nullptr, nullptr), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{kNothingKnown});
}

TEST_F(ScriptError, OtherCommandsAreNotServed) {
    VARIANT out{};
    for (const DWORD command : {0U, 1U, 39U, 41U, 25U}) {
        EXPECT_EQ(Exec(&kDocHostCommands, command, &input, &out), OLECMDERR_E_NOTSUPPORTED);
    }
    EXPECT_EQ(out.vt, VT_EMPTY);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(ScriptError, OtherGroupsAndNoneAreUnknown) {
    VARIANT out{};
    GUID almost = kDocHostCommands;
    almost.Data4[7] = 0x37;
    for (const GUID* group : std::initializer_list<const GUID*>{nullptr, &IID_NULL, &almost}) {
        EXPECT_EQ(Exec(group, kShowScriptError, &input, &out), OLECMDERR_E_UNKNOWNGROUP);
        EXPECT_EQ(Exec(group, 1, &input, &out), OLECMDERR_E_UNKNOWNGROUP);
    }
    EXPECT_EQ(out.vt, VT_EMPTY);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

} // namespace
} // namespace kelda
