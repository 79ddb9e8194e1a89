// Scripted answers to the credential prompt, and the record that is kept of prompts.
#include <array>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <objbase.h>

#include "prompt_call.h"

using nlohmann::json;

namespace windows_gaps_test {
namespace {

class PromptScript : public PromptTest {
  protected:
    /// Prompts once with what `call_` holds.
    void RunScript(const std::string& script) {
        script_.Write(script);
        call_.Run();
    }

    NamedFile script_{L"KELDA_PROMPT_SCRIPT"};
    PromptCall call_;
};

TEST_F(PromptScript, EntersUserNameAndPassword) {
    RunScript(R"([{"user": "DOM\\j\u00f6rg", "password": "p:@ss \u20ac", "save": true}])");

    EXPECT_EQ(call_.error, 0U);
    EXPECT_EQ(call_.unpackError, 0U);
    EXPECT_EQ(call_.userName, L"DOM\\j\u00f6rg");
    EXPECT_EQ(call_.password, L"p:@ss \u20ac");
    EXPECT_EQ(call_.save, TRUE);
}

TEST_F(PromptScript, LeavesTheBoxAloneUnlessItSaysOtherwise) {
    call_.save = TRUE;
    RunScript(
        R"([{"user": "ann", "password": "secret"}, {"user": "ann", "password": "secret", "save": false}])");
    EXPECT_EQ(call_.save, TRUE);

    call_.Run();
    EXPECT_EQ(call_.save, FALSE);
}

TEST_F(PromptScript, SavesNothingWithoutABox) {
    call_.flags = CREDUIWIN_GENERIC;
    RunScript(R"([{"user": "ann", "password": "secret", "save": true}])");

    EXPECT_EQ(call_.userName, L"ann");
    EXPECT_EQ(call_.save, FALSE);
}

TEST_F(PromptScript, ConfirmsWhatIsPrefilled) {
    call_.Prefill(L"ann", L"secret");
    RunScript(R"([{"accept": true}])");

    EXPECT_EQ(call_.error, 0U);
    EXPECT_EQ(call_.userName, L"ann");
    EXPECT_EQ(call_.password, L"secret");
}

TEST_F(PromptScript, ConfirmsEmptyFieldsWhenNothingUsableIsPrefilled) {
    call_.authBuffer = {1, 2, 3};
    RunScript(R"([{"accept": true}])");

    EXPECT_EQ(call_.error, 0U);
    EXPECT_EQ(call_.unpackError, 0U);
    EXPECT_EQ(call_.userName, L"");
}

TEST_F(PromptScript, Cancels) {
    RunScript(R"([{"cancel": true}])");

    EXPECT_EQ(call_.error, static_cast<DWORD>(ERROR_CANCELLED));
    EXPECT_FALSE(call_.handedOut);
}

TEST_F(PromptScript, Fails) {
    RunScript(R"([{"fail": 31}])");

    EXPECT_EQ(call_.error, 31U);
    EXPECT_FALSE(call_.handedOut);
}

TEST_F(PromptScript, HandsOutWhatCannotBeUnpacked) {
    RunScript(R"([{"malformed": true}])");

    EXPECT_EQ(call_.error, 0U);
    EXPECT_TRUE(call_.handedOut);
    EXPECT_EQ(call_.unpackError, static_cast<DWORD>(ERROR_NOT_SUPPORTED));
}

TEST_F(PromptScript, IsTakenAnswerByAnswerAndThenCancels) {
    RunScript(R"([{"user": "one", "password": ""}, {"user": "two", "password": ""}])");
    EXPECT_EQ(call_.userName, L"one");
    call_.Run();
    EXPECT_EQ(call_.userName, L"two");
    for (int prompt = 0; prompt < 2; ++prompt) {
        call_.Run();
        EXPECT_EQ(call_.error, static_cast<DWORD>(ERROR_CANCELLED));
    }
}

TEST_F(PromptScript, HasAPositionOfItsOwn) {
    RunScript(R"([{"user": "one", "password": ""}, {"user": "two", "password": ""}])");
    {
        const NamedFile other(L"KELDA_PROMPT_SCRIPT");
        other.Write(R"([{"user": "three", "password": ""}])");
        call_.Run();
        EXPECT_EQ(call_.userName, L"three");
    }
}

TEST_F(PromptScript, OfNoUseIsAFailureThatStderrExplains) {
    const std::array<std::string, 10> scripts = {
        "",
        "[",
        "{}",
        "[1]",
        "[{}]",
        R"([{"user": "ann"}])",
        R"([{"user": 1, "password": ""}])",
        R"([{"user": "ann", "password": "", "save": 1}])",
        R"([{"cancel": "yes"}])",
        R"([{"fail": "yes"}])",
    };
    for (const std::string& script : scripts) {
        SCOPED_TRACE(script);
        const NamedFile file(L"KELDA_PROMPT_SCRIPT");
        file.Write(script);
        testing::internal::CaptureStderr();
        call_.Run();
        EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("is of no use"));
        EXPECT_EQ(call_.error, static_cast<DWORD>(ERROR_INVALID_DATA));
        EXPECT_FALSE(call_.handedOut);
    }
}

TEST_F(PromptScript, ThatIsMissingIsAFailureThatStderrExplains) {
    testing::internal::CaptureStderr();
    call_.Run();
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("cannot be opened"));
    EXPECT_EQ(call_.error, static_cast<DWORD>(ERROR_INVALID_DATA));
}

class PromptLog : public PromptScript {
  protected:
    std::vector<json> Lines() const {
        std::vector<json> lines;
        std::istringstream text(log_.Read());
        for (std::string line; std::getline(text, line);) {
            lines.push_back(json::parse(line));
        }
        return lines;
    }

    NamedFile log_{L"KELDA_PROMPT_LOG"};
};

TEST_F(PromptLog, TellsEverythingButThePassword) {
    call_.caption = L"Caption \u20ac";
    call_.message = L"First\nSecond \"quoted\"";
    call_.parent = GetDesktopWindow();
    call_.authError = 5;
    call_.authPackage = 7;
    call_.Prefill(L"bob", L"hidden-before");
    RunScript(R"([{"user": "ann", "password": "hidden-after", "save": true}])");

    EXPECT_EQ(Lines(), std::vector<json>{json({{"caption", "Caption \u20ac"},
                                               {"message", "First\nSecond \"quoted\""},
                                               {"struct_size", 40},
                                               {"has_parent", true},
                                               {"flags", 3},
                                               {"auth_package_in", 7},
                                               {"auth_error", 5},
                                               {"prefilled_user", "bob"},
                                               {"prefilled_password", true},
                                               {"save_before", false},
                                               {"save_after", true},
                                               {"outcome", "answered"},
                                               {"error", 0}})});
    EXPECT_THAT(log_.Read(), testing::Not(testing::HasSubstr("hidden")));
}

TEST_F(PromptLog, HasALineForEachPromptHoweverItEnds) {
    call_.save = TRUE;
    RunScript(R"([{"cancel": true, "save": false}, {"fail": 31}, {"malformed": true}])");
    call_.Run();
    call_.Run();

    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0]["outcome"], "cancelled");
    EXPECT_EQ(lines[0]["error"], 1223);
    EXPECT_EQ(lines[0]["save_before"], true);
    EXPECT_EQ(lines[0]["save_after"], true);
    EXPECT_EQ(lines[0]["prefilled_user"], nullptr);
    EXPECT_EQ(lines[0]["prefilled_password"], false);
    EXPECT_EQ(lines[0]["has_parent"], false);
    EXPECT_EQ(lines[1]["outcome"], "failed");
    EXPECT_EQ(lines[1]["error"], 31);
    EXPECT_EQ(lines[2]["outcome"], "answered");
}

TEST_F(PromptLog, ThatCannotBeWrittenChangesNothingElse) {
    SetEnvironmentVariableW(L"KELDA_PROMPT_LOG", L"C:\\no\\such\\folder\\log.json");
    testing::internal::CaptureStderr();
    RunScript(R"([{"user": "ann", "password": "secret"}])");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("cannot be written"));
    EXPECT_EQ(call_.userName, L"ann");
}

TEST_F(PromptScript, IsNotAskedForACallThatIsWrong) {
    script_.Write(R"([{"user": "ann", "password": "secret"}])");
    call_.structSize = sizeof(CREDUI_INFOW) - 1;
    call_.Run();
    EXPECT_EQ(call_.error, static_cast<DWORD>(ERROR_INVALID_PARAMETER));

    CREDUI_INFOW info = {sizeof(info), nullptr, nullptr, nullptr, nullptr};
    ULONG package = 0;
    void* packed = nullptr;
    ULONG size = 0;
    BOOL save = FALSE;
    const auto prompt = [&](void** buffer, ULONG* bufferSize, BOOL* box) {
        return CredUIPromptForWindowsCredentialsW(&info, 0, &package, nullptr, 0, buffer, bufferSize, box,
                                                  CREDUIWIN_GENERIC | CREDUIWIN_CHECKBOX);
    };
    EXPECT_EQ(prompt(nullptr, &size, &save), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(prompt(&packed, nullptr, &save), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(prompt(&packed, &size, nullptr), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(prompt(&packed, &size, &save), 0U);
    CoTaskMemFree(packed);
}

} // namespace
} // namespace windows_gaps_test
