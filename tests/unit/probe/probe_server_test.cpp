// A whole probe against a played stack, through the exported functions and through the request object.
#include <string>

#include <gtest/gtest.h>
#include <wrl/client.h>

#include "du/string_utilities.h"
#include "kelda/kelda.h"
#include "probe/server_basic_authentication.h"
#include "tests/support/played_probe.h"
#include "tests/support/replaced_import.h"
#include "tests/support/transcript.h"
#include "ui/ui.h"

#include <windows.h>

#include <wincred.h>

using Microsoft::WRL::ComPtr;
using test_support::Lines;
using test_support::PlayedProbe;
using test_support::Record;
using test_support::ReplacedImport;

namespace kelda {
namespace {

class PlayedServer : public test_support::TranscriptTest {
  protected:
    /// A stack that delivers one final HTTP code, as it does where nothing is challenged.
    static PlayedProbe::Script Answer(DWORD code) {
        return [code](IBindStatusCallback& callback) {
            ComPtr<IHttpNegotiate> negotiate;
            EXPECT_EQ(callback.QueryInterface(IID_PPV_ARGS(&negotiate)), S_OK);
            const HRESULT result = negotiate->OnResponse(code, L"", nullptr, nullptr);
            callback.OnStopBinding(result, L"");
            return result;
        };
    }

    /// A stack that challenges once and then delivers one final HTTP code.
    static PlayedProbe::Script ChallengeThenAnswer(DWORD code) {
        return [code](IBindStatusCallback& callback) {
            ComPtr<IAuthenticate> authenticate;
            EXPECT_EQ(callback.QueryInterface(IID_PPV_ARGS(&authenticate)), S_OK);
            HWND window = nullptr;
            LPWSTR userName = nullptr;
            LPWSTR password = nullptr;
            const HRESULT result = authenticate->Authenticate(&window, &userName, &password);
            CoTaskMemFree(userName);
            CoTaskMemFree(password);
            if (FAILED(result)) {
                callback.OnStopBinding(result, L"");
                return result;
            }
            return Answer(code)(callback);
        };
    }

    static bool AuthenticateAt(const char* serverUrl, const char* urlPath) {
        return AuthenticateServer(L"Log in", L"Caption", "viewer", serverUrl, urlPath);
    }

    DWORD promptResult = ERROR_SUCCESS;
    ReplacedImport<struct Operation, decltype(ui_do_operation)> operation{
        "host_toolkit.dll", "ui_do_operation",
        [](const char* device, const char* component, int, int, void*, int) {
            Record(std::string("window of ") + device + " " + component);
            return 1;
        }};
    ReplacedImport<struct Read, decltype(CredReadW)> credRead{
        "advapi32.dll", "CredReadW", [](LPCWSTR, DWORD, DWORD, PCREDENTIALW*) -> BOOL { return FALSE; }};
    ReplacedImport<struct Write, decltype(CredWriteW)> credWrite{
        "advapi32.dll", "CredWriteW", [](PCREDENTIALW, DWORD) -> BOOL { return TRUE; }};
    ReplacedImport<struct Prompt, decltype(CredUIPromptForWindowsCredentialsW)> prompt{
        "credui.dll", "CredUIPromptForWindowsCredentialsW",
        [this](PCREDUI_INFOW info, DWORD, ULONG*, LPCVOID, ULONG, LPVOID* output, ULONG* size, BOOL*,
               DWORD) -> DWORD {
            Record("prompt \"" + du::WideStrToUtf8(info->pszCaptionText) + "\" \"" +
                   du::WideStrToUtf8(info->pszMessageText) + "\"");
            if (promptResult == ERROR_SUCCESS) {
                *size = 1;
                *output = CoTaskMemAlloc(*size);
            }
            return promptResult;
        }};
    ReplacedImport<struct Unpack, decltype(CredUnPackAuthenticationBufferW)> unpack{
        "credui.dll", "CredUnPackAuthenticationBufferW",
        [](DWORD, PVOID, DWORD, LPWSTR user, DWORD*, LPWSTR, DWORD*, LPWSTR pass, DWORD*) -> BOOL {
            user[0] = L'u';
            pass[0] = L'p';
            return TRUE;
        }};
};

class ReportedStatus : public test_support::TranscriptTest {};

class OwnerWindow : public test_support::TranscriptTest {
  protected:
    int operationResult = 0;
    HWND toolkitWindow = reinterpret_cast<HWND>(0x1234);
    ReplacedImport<struct Operation, decltype(ui_do_operation)> operation{
        "host_toolkit.dll", "ui_do_operation",
        [this](const char* device, const char* component, int code, int input, void* output, int end) {
            Record(std::string("ui_do_operation ") + device + " " + component + " " + std::to_string(code) +
                   " " + std::to_string(input) + " " + std::to_string(end));
            *static_cast<HWND*>(output) = toolkitWindow;
            return operationResult;
        }};
    ServerBasicAuthentication authentication{L"Log in", L"Caption", "http://server/", "path", "main"};
};

TEST_F(PlayedServer, IsProbedAtTheUrlFollowedDirectlyByThePath) {
    PlayedProbe probe(Answer(403));
    AuthenticateAt("http://server", "documents/");
    AuthenticateAt("http://server/", "/documents");
    AuthenticateAt("http://server/", "");
    EXPECT_EQ(probe.Addresses(),
              (Lines{"http://serverdocuments/", "http://server//documents", "http://server/"}));
}

TEST_F(PlayedServer, IsProbedAtExactlyItsUrlWhereThePathIsNull) {
    PlayedProbe probe(Answer(403));
    AuthenticateAt("http://server/app", nullptr);
    EXPECT_EQ(probe.Addresses(), (Lines{"http://server/app"}));
}

TEST_F(PlayedServer, ThatAnswersAtOnceWantsItsLoginForm) {
    PlayedProbe probe(Answer(200));
    EXPECT_EQ(ApplyBasicAuthentication(L"", L"", "viewer", "http://server/", ""),
              AuthenticationStatus::FormBasedRequired);
    EXPECT_EQ(TakeTraceLines(),
              (Lines{"[0] Authentication URL is http://server/", "[0] Authentication URL path is ",
                     "[0] SessionAuthenticationComplete. status = 1",
                     "[0] HTTP Stream for server authentication was created successfully"}));
}

TEST_F(PlayedServer, IsAskedForWithTheHostsTextsAndWindow) {
    PlayedProbe probe(ChallengeThenAnswer(200));
    const Lines expected{"BindToStorage IStream", "window of main main",
                         "prompt \"The caption\" \"The prompt\nhttp://server\"", "moniker gone"};
    const auto withoutTrace = [](Lines lines) {
        std::erase_if(lines, [](const std::string& line) { return line.starts_with('['); });
        return lines;
    };
    AuthenticateServer(L"The prompt", L"The caption", "main", "http://server/", "x");
    EXPECT_EQ(withoutTrace(TakeTranscript()), expected);
    ApplyBasicAuthentication(L"The prompt", L"The caption", "main", "http://server/", "x");
    EXPECT_EQ(withoutTrace(TakeTranscript()), expected);
}

TEST_F(PlayedServer, ThatAcceptsThePromptedCredentialsAuthenticates) {
    PlayedProbe probe(ChallengeThenAnswer(200));
    EXPECT_EQ(ApplyBasicAuthentication(L"", L"", "viewer", "http://server/", "x"),
              AuthenticationStatus::Authenticated);
    EXPECT_TRUE(AuthenticateAt("http://server/", "x"));
}

TEST_F(PlayedServer, ThatRefusesThePromptedCredentialsDoesNotAuthenticate) {
    PlayedProbe probe(ChallengeThenAnswer(401));
    EXPECT_EQ(ApplyBasicAuthentication(L"", L"", "viewer", "http://server/", ""),
              AuthenticationStatus::Unauthorized);
    EXPECT_FALSE(AuthenticateAt("http://server/", ""));
    EXPECT_EQ(probe.Addresses().size(), 2U) << "one probe each: nothing is retried";
}

TEST_F(PlayedServer, WhosePromptIsCancelledDoesNotAuthenticate) {
    promptResult = ERROR_CANCELLED;
    PlayedProbe probe(ChallengeThenAnswer(200));
    EXPECT_EQ(ApplyBasicAuthentication(L"", L"", "viewer", "http://server/", ""),
              AuthenticationStatus::Cancelled);
    EXPECT_FALSE(AuthenticateAt("http://server/", ""));
    EXPECT_EQ(probe.Addresses().size(), 2U) << "one probe each: nothing is retried";
}

TEST_F(PlayedServer, ThatForbidsDoesNotAuthenticate) {
    PlayedProbe probe(Answer(403));
    EXPECT_EQ(ApplyBasicAuthentication(L"", L"", "viewer", "http://server/", ""),
              AuthenticationStatus::Failed);
    EXPECT_FALSE(AuthenticateAt("http://server/", ""));
    EXPECT_EQ(probe.Addresses().size(), 2U) << "one probe each: nothing is retried";
}

TEST_F(PlayedServer, ThatCannotBeBoundToLeavesNothingDecided) {
    PlayedProbe probe([](IBindStatusCallback&) { return E_FAIL; });
    EXPECT_EQ(ApplyBasicAuthentication(L"", L"", "viewer", "http://server/", ""), AuthenticationStatus::None);
    EXPECT_FALSE(AuthenticateAt("http://server/", ""));
    EXPECT_EQ(probe.Addresses().size(), 2U) << "one probe each: nothing is retried";
}

TEST_F(OwnerWindow, IsThatOfTheOwnerDevice) {
    EXPECT_EQ(authentication.GetParentWindow(), toolkitWindow);
    EXPECT_EQ(TakeTranscript(), (Lines{"ui_do_operation main main 2092 0 0"}));
}

TEST_F(OwnerWindow, IsTheDesktopWhereTheToolkitRefuses) {
    operationResult = 1;
    EXPECT_EQ(authentication.GetParentWindow(), GetDesktopWindow());
}

TEST_F(ReportedStatus, IsTracedAndKept) {
    ServerBasicAuthentication authentication(L"Log in", L"Caption", "http://server/", "path", "main");
    EXPECT_EQ(authentication.Status(), 0);
    authentication.SessionAuthenticationComplete(5);
    EXPECT_EQ(authentication.Status(), 5);
    EXPECT_EQ(TakeTranscript(), (Lines{"[0] SessionAuthenticationComplete. status = 5"}));
}

} // namespace
} // namespace kelda
