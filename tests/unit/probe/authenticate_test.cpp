// Answering a challenge: the prompt, the credential store, what is handed to the stack, and what is wiped.
#include <algorithm>
#include <array>
#include <cwchar>
#include <functional>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <windows.h>

#include <wincred.h>

#include "du/string_utilities.h"
#include "probe/credentials.h"
#include "probe_test.h"
#include "support/com_text.h"
#include "tests/support/replaced_import.h"

using test_support::Lines;
using test_support::Record;
using test_support::ReplacedImport;

namespace kelda {
namespace {

constexpr std::array<BYTE, 5> kPackedBytes{1, 2, 3, 4, 5};

/// The credential functions of the system are played by the members below, and each call is recorded with its arguments.
class Challenge : public AuthenticationStreamTest {
  protected:
    // What the store holds; nothing, an entry without a blob, or one with it.
    std::optional<std::vector<BYTE>> storedBlob;
    BYTE* emptyBlob = nullptr; // what an entry without a blob points to
    // What the user does at the prompt.
    DWORD promptResult = ERROR_SUCCESS;
    std::optional<BOOL> boxLeftAt;
    // What unpacking yields.
    DWORD unpackError = ERROR_SUCCESS;
    std::wstring userName = L"anna";
    std::wstring password = L"secret";
    BOOL writeResult = TRUE;

    std::vector<BYTE> packed; // stands for the system's buffer; freed by the code under test only in name
    std::wstring readTarget;
    const wchar_t* readTargetAddress = nullptr;
    std::wstring writtenTarget;
    std::vector<BYTE> writtenBlob;
    std::vector<BYTE> promptInput;

    HRESULT Authenticate() {
        CoTaskMemFree(std::exchange(userNameResult, nullptr));
        CoTaskMemFree(std::exchange(passwordResult, nullptr));
        return stream->Authenticate(&window, &userNameResult, &passwordResult);
    }

    ~Challenge() override {
        CoTaskMemFree(userNameResult);
        CoTaskMemFree(passwordResult);
    }

    HWND window = nullptr;
    LPWSTR userNameResult = nullptr;
    LPWSTR passwordResult = nullptr;

    CREDENTIALW entry{};
    ReplacedImport<struct Read, decltype(CredReadW)> credRead{
        "advapi32.dll", "CredReadW",
        [this](LPCWSTR target, DWORD type, DWORD flags, PCREDENTIALW* credential) -> BOOL {
            readTarget = target;
            readTargetAddress = target;
            Record("CredRead " + du::WideStrToUtf8(target) + " type " + std::to_string(type) + " flags " +
                   std::to_string(flags));
            if (!storedBlob) {
                SetLastError(ERROR_NOT_FOUND);
                return FALSE;
            }
            entry = {};
            entry.CredentialBlob = storedBlob->empty() ? emptyBlob : storedBlob->data();
            entry.CredentialBlobSize = static_cast<DWORD>(storedBlob->size());
            *credential = &entry;
            return TRUE;
        }};
    ReplacedImport<struct Free, decltype(CredFree)> credFree{
        "advapi32.dll", "CredFree", [this](void* credential) {
            Record(credential == &entry ? "CredFree" : "CredFree of something else");
        }};
    ReplacedImport<struct Write, decltype(CredWriteW)> credWrite{
        "advapi32.dll", "CredWriteW", [this](PCREDENTIALW credential, DWORD flags) -> BOOL {
            EXPECT_NE(static_cast<const wchar_t*>(credential->TargetName), readTargetAddress)
                << "a copy of its own";
            writtenTarget = credential->TargetName;
            writtenBlob.assign(credential->CredentialBlob,
                               credential->CredentialBlob + credential->CredentialBlobSize);
            const bool nothingElse = credential->Flags == 0 && credential->Comment == nullptr &&
                                     credential->AttributeCount == 0 && credential->Attributes == nullptr &&
                                     credential->TargetAlias == nullptr && credential->UserName == nullptr &&
                                     credential->LastWritten.dwLowDateTime == 0 &&
                                     credential->LastWritten.dwHighDateTime == 0;
            Record("CredWrite " + du::WideStrToUtf8(writtenTarget) + " type " +
                   std::to_string(credential->Type) + " persist " + std::to_string(credential->Persist) +
                   (credential->CredentialBlob == nullptr ? " no blob" : " blob") + " flags " +
                   std::to_string(flags) + (nothingElse ? "" : " and more"));
            return writeResult;
        }};
    ReplacedImport<struct Prompt, decltype(CredUIPromptForWindowsCredentialsW)> prompt{
        "credui.dll", "CredUIPromptForWindowsCredentialsW",
        [this](PCREDUI_INFOW info, DWORD authError, ULONG* package, LPCVOID input, ULONG inputSize,
               LPVOID* output, ULONG* outputSize, BOOL* save, DWORD flags) -> DWORD {
            Record("Prompt size " + std::to_string(info->cbSize) +
                   (info->hwndParent == nullptr ? "" : " with parent") +
                   (info->hbmBanner == nullptr ? "" : " with banner") + " \"" +
                   du::WideStrToUtf8(info->pszCaptionText) + "\" \"" +
                   du::WideStrToUtf8(info->pszMessageText) + "\"");
            Record("  error " + std::to_string(authError) + " package " + std::to_string(*package) +
                   " input " + (input == nullptr ? "none " : "") + std::to_string(inputSize) + " save " +
                   std::to_string(*save) + " flags " + std::to_string(flags));
            promptInput.assign(static_cast<const BYTE*>(input), static_cast<const BYTE*>(input) + inputSize);
            if (promptResult == ERROR_SUCCESS) {
                packed.assign(kPackedBytes.begin(), kPackedBytes.end());
                *output = packed.data();
                *outputSize = static_cast<ULONG>(packed.size());
                *save = boxLeftAt.value_or(*save);
            }
            return promptResult;
        }};
    ReplacedImport<struct Unpack, decltype(CredUnPackAuthenticationBufferW)> unpack{
        "credui.dll", "CredUnPackAuthenticationBufferW",
        [this](DWORD flags, PVOID buffer, DWORD size, LPWSTR user, DWORD* userSize, LPWSTR domain,
               DWORD* domainSize, LPWSTR pass, DWORD* passSize) -> BOOL {
            Record("Unpack flags " + std::to_string(flags) +
                   (buffer == packed.data() ? " the answer" : " something") + " " + std::to_string(size) +
                   " into " + std::to_string(*userSize) + ", " + std::to_string(*domainSize) + ", " +
                   std::to_string(*passSize));
            std::wcscpy(user, userName.c_str());
            std::wcscpy(domain, L"DOMAIN");
            std::wcscpy(pass, password.c_str());
            SetLastError(unpackError);
            return unpackError == ERROR_SUCCESS;
        }};
    ReplacedImport<struct FreeTask, decltype(CoTaskMemFree)> freeTaskMemory{
        "ole32.dll", "CoTaskMemFree", [this](void* memory) {
            if (memory == nullptr || memory != packed.data()) {
                decltype(freeTaskMemory)::Original(memory);
                return;
            }
            const bool wiped = std::all_of(packed.begin(), packed.end(), [](BYTE byte) { return byte == 0; });
            Record(wiped ? "answer freed, wiped" : "answer freed with its bytes");
        }};
};

const Lines kPromptOfNothing{
    "GetParentWindow",
    "CredRead http://server/ type 1 flags 0",
    "Prompt size 40 \"Caption\" \"Log in\nhttp://server\"",
    "  error 0 package 0 input none 0 save 0 flags 3",
};

Lines Then(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

TEST_F(Challenge, FirstContactPromptsForNothingAndWritesAnEntryWithoutBlob) {
    EXPECT_EQ(Authenticate(), S_OK);
    EXPECT_EQ(TakeTranscript(),
              Then(kPromptOfNothing,
                   {"Unpack flags 0 the answer 5 into 514, 338, 257",
                    "CredWrite http://server/ type 1 persist 2 no blob flags 0", "answer freed, wiped",
                    "[0] Credentials were sent successfully to server following Authenticate() callback"}));
    EXPECT_EQ(window, GetDesktopWindow());
    EXPECT_STREQ(userNameResult, L"anna");
    EXPECT_STREQ(passwordResult, L"secret");
    EXPECT_EQ(stream->Status(), AuthenticationStatus::FormBasedRequired);
}

TEST_F(Challenge, ATickedBoxStoresThePackedAnswer) {
    boxLeftAt = TRUE;
    EXPECT_EQ(Authenticate(), S_OK);
    const Lines lines = TakeTranscript();
    EXPECT_EQ(lines.at(5), "CredWrite http://server/ type 1 persist 2 blob flags 0");
    EXPECT_EQ(lines.at(6), "answer freed, wiped");
    EXPECT_EQ(writtenBlob, std::vector<BYTE>(kPackedBytes.begin(), kPackedBytes.end()))
        << "before it is wiped";
}

TEST_F(Challenge, AStoredAnswerPreFillsThePromptAndTicksTheBox) {
    storedBlob = std::vector<BYTE>(9, 7);
    EXPECT_EQ(Authenticate(), S_OK);
    const Lines lines = TakeTranscript();
    EXPECT_EQ(lines.at(3), "  error 0 package 0 input 9 save 1 flags 3");
    EXPECT_EQ(lines.at(4), "CredFree") << "right after the prompt";
    EXPECT_EQ(lines.at(6), "CredWrite http://server/ type 1 persist 2 blob flags 0");
    EXPECT_EQ(promptInput, std::vector<BYTE>(9, 7));
    EXPECT_EQ(writtenBlob, std::vector<BYTE>(kPackedBytes.begin(), kPackedBytes.end())) << "the new answer";
    EXPECT_EQ(*storedBlob, std::vector<BYTE>(9, 0)) << "zeroed before it is freed";
}

TEST_F(Challenge, AnUntickedBoxClearsAStoredAnswer) {
    storedBlob = std::vector<BYTE>(9, 7);
    boxLeftAt = FALSE;
    EXPECT_EQ(Authenticate(), S_OK);
    EXPECT_EQ(TakeTranscript().at(6), "CredWrite http://server/ type 1 persist 2 no blob flags 0");
}

TEST_F(Challenge, AStoredEntryWithoutABlobLeavesTheBoxUnticked) {
    static BYTE nothing = 0;
    for (BYTE* const pointer : {static_cast<BYTE*>(nullptr), &nothing}) { // Wine points somewhere
        storedBlob.emplace();
        emptyBlob = pointer;
        stream->SaveCredentials() = TRUE; // from an earlier challenge
        EXPECT_EQ(Authenticate(), S_OK);
        EXPECT_EQ(TakeTranscript().at(3), "  error 0 package 0 input none 0 save 0 flags 3");
    }
}

TEST_F(Challenge, WithoutAnEntryTheBoxKeepsWhatTheUserLeftItAt) {
    boxLeftAt = TRUE;
    EXPECT_EQ(Authenticate(), S_OK);
    TakeTranscript();
    EXPECT_EQ(Authenticate(), S_OK);
    EXPECT_EQ(TakeTranscript().at(3), "  error 0 package 0 input none 0 save 1 flags 3");
}

TEST_F(Challenge, CancellingEndsTheBind) {
    promptResult = ERROR_CANCELLED;
    EXPECT_EQ(Authenticate(), E_INVALIDARG);
    EXPECT_EQ(TakeTranscript(), Then(kPromptOfNothing, {"[0] Sending of Credentials to server following "
                                                        "Authenticate() callback was cancelled by user"}));
    EXPECT_EQ(stream->Status(), AuthenticationStatus::Cancelled);
    EXPECT_EQ(window, GetDesktopWindow());
    EXPECT_EQ(userNameResult, nullptr);
    EXPECT_EQ(passwordResult, nullptr);
}

TEST_F(Challenge, CancellingFreesTheStoredEntry) {
    storedBlob = std::vector<BYTE>(3, 1);
    promptResult = ERROR_CANCELLED;
    EXPECT_EQ(Authenticate(), E_INVALIDARG);
    EXPECT_EQ(TakeTranscript().at(4), "CredFree");
}

TEST_F(Challenge, ACancelledProbeEndsAsAnAbortedOperation) {
    promptResult = ERROR_CANCELLED;
    Authenticate();
    TakeTranscript();
    stream->AddRef();
    stream->OnStopBinding(E_INVALIDARG, L"");
    EXPECT_EQ(TakeTranscript(), (Lines{"[0] Operation aborted.", "SessionAuthenticationComplete 4"}));
}

TEST_F(Challenge, APromptThatFailsLeavesTheAnswerToTheServer) {
    promptResult = 0xC0000001UL;
    EXPECT_EQ(Authenticate(), S_OK);
    EXPECT_EQ(TakeTranscript(),
              Then(kPromptOfNothing, {"[3] CredUIPromptForCredentials() failed. Error code = 3221225473"}));
    EXPECT_EQ(stream->Status(), AuthenticationStatus::None);
    EXPECT_EQ(userNameResult, nullptr);
    EXPECT_EQ(passwordResult, nullptr);
}

TEST_F(Challenge, AnAnswerThatCannotBeUnpackedIsReportedLeftUnwipedAndUnfreed) {
    unpackError = ERROR_NOT_SUPPORTED;
    EXPECT_EQ(Authenticate(), S_OK);
    EXPECT_EQ(TakeTranscript(),
              Then(kPromptOfNothing, {"Unpack flags 0 the answer 5 into 514, 338, 257",
                                      "[3] CredUnPackAuthenticationBuffer() failed. Error code = 50",
                                      "[3] CredUIPromptForCredentials() failed. Error code = 50"}));
    EXPECT_EQ(packed, std::vector<BYTE>(kPackedBytes.begin(), kPackedBytes.end()));
    EXPECT_EQ(stream->Status(), AuthenticationStatus::None);
    EXPECT_EQ(userNameResult, nullptr);
    EXPECT_EQ(passwordResult, nullptr);
}

TEST_F(Challenge, AFailedWriteIsSilent) {
    writeResult = FALSE;
    EXPECT_EQ(Authenticate(), S_OK);
    const Lines lines = TakeTranscript();
    EXPECT_EQ(Lines(lines.begin() + 6, lines.end()),
              (Lines{"answer freed, wiped",
                     "[0] Credentials were sent successfully to server following Authenticate() callback"}));
    EXPECT_STREQ(userNameResult, L"anna");
}

TEST_F(Challenge, CredentialsOfAnyAlphabetAndLengthAreHandedOverWhole) {
    userName = std::wstring(513, L'\x00E4');
    password = std::wstring(254, L'\x20AC') + L"\xD83D\xDE00";
    EXPECT_EQ(Authenticate(), S_OK);
    EXPECT_EQ(userNameResult, userName);
    EXPECT_EQ(passwordResult, password);
}

TEST_F(Challenge, EmptyCredentialsAreCredentials) {
    userName.clear();
    password.clear();
    EXPECT_EQ(Authenticate(), S_OK);
    EXPECT_STREQ(userNameResult, L"");
    EXPECT_STREQ(passwordResult, L"");
}

TEST_F(Challenge, CredentialsAreHandedOverInBlocksOfTheirLengthAndATerminator) {
    std::vector<SIZE_T> sizes;
    ReplacedImport<struct Allocate, decltype(CoTaskMemAlloc)> allocate(
        "ole32.dll", "CoTaskMemAlloc", [&](SIZE_T size) -> void* {
            sizes.push_back(size);
            return decltype(allocate)::Original(size);
        });
    EXPECT_EQ(Authenticate(), S_OK);
    EXPECT_EQ(sizes, (std::vector<SIZE_T>{10, 14}));
}

TEST_F(Challenge, WithoutMemoryForTheCredentialsTheStackGetsNone) {
    for (int failing = 1; failing <= 2; ++failing) {
        int calls = 0;
        ReplacedImport<struct Allocate, decltype(CoTaskMemAlloc)> allocate(
            "ole32.dll", "CoTaskMemAlloc", [&](SIZE_T size) -> void* {
                return ++calls == failing ? nullptr : decltype(allocate)::Original(size);
            });
        EXPECT_EQ(Authenticate(), S_OK) << failing;
        EXPECT_EQ(TakeTraceLines(), (Lines{"[3] CredUIPromptForCredentials() failed. Error code = 14"}));
        EXPECT_EQ(userNameResult, nullptr);
        EXPECT_EQ(passwordResult, nullptr);
        EXPECT_EQ(stream->Status(), AuthenticationStatus::None);
    }
}

TEST_F(Challenge, NoExceptionCrossesIntoTheStack) {
    ThrowingCallback withoutMemory{std::bad_alloc()};
    AuthenticationStream first(withoutMemory, L"", L"", "http://server/");
    EXPECT_EQ(first.Authenticate(&window, &userNameResult, &passwordResult), E_OUTOFMEMORY);
    ThrowingCallback broken{std::runtime_error("broken")};
    AuthenticationStream second(broken, L"", L"", "http://server/");
    EXPECT_EQ(second.Authenticate(&window, &userNameResult, &passwordResult), E_FAIL);
    EXPECT_EQ(userNameResult, nullptr);
    EXPECT_EQ(passwordResult, nullptr);
}

TEST_F(Challenge, TheTargetIsTheServerUrlAsGiven) {
    for (const char* const url :
         {"http://server", "http://server/", "HTTP://Server/", "http://s\xC3\xA4rver/a b"}) {
        AuthenticationStream other(callback, L"", L"", url);
        std::string user;
        std::string secret;
        EXPECT_EQ(PromptForCredentials(other, L"", L"", user, secret), 0U);
        EXPECT_EQ(readTarget, du::Utf8ToWideStr(url));
        EXPECT_EQ(writtenTarget, du::Utf8ToWideStr(url));
        EXPECT_EQ(user, "anna");
        EXPECT_EQ(secret, "secret");
    }
}

TEST_F(Challenge, AServerUrlOf60CharactersShowsItsFirst47AndAnEllipsis) {
    const std::string url = "http://" + std::string(53, 'x');
    AuthenticationStream other(callback, L"", L"", url);
    std::string user;
    std::string secret;
    EXPECT_EQ(PromptForCredentials(other, L"P", L"C", user, secret), 0U);
    EXPECT_EQ(TakeTranscript().at(2), "Prompt size 40 \"C\" \"P\n" + url.substr(0, 47) + "...\"");
}

} // namespace
} // namespace kelda
