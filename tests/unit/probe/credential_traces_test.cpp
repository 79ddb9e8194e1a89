// No copy of what the user typed stays in the process's memory once a probe is over. The system's side is played here, so
// that every copy that could be found is one of the library's own making.
#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>
#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <wrl/client.h>

#include <windows.h>

#include <wincred.h>

#include "probe/authentication_stream.h"
#include "probe/server_basic_authentication.h"
#include "support/wipe.h"
#include "tests/support/fake_binding.h"
#include "tests/support/freed_blocks.h"
#include "tests/support/memory_search.h"
#include "tests/support/played_probe.h"
#include "tests/support/replaced_import.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/transcript.h"

using Microsoft::WRL::ComPtr;
using test_support::CountInBlock;
using test_support::CountInMemory;
using test_support::FakeBinding;
using test_support::FreedBlocksWatch;
using test_support::HiddenText;
using test_support::Lines;
using test_support::MakeFake;
using test_support::PlayedProbe;
using test_support::ReplacedImport;
using test_support::ScopedVariable;

namespace kelda {
namespace {

/// One probe of a server that challenges, with secrets of a length: short ones live inside of string objects, long ones
/// on the heap. Memory that is freed is looked at as well, as it may be overwritten before memory as a whole is searched.
class ProbeWithSecrets : public test_support::TranscriptTest,
                         public ::testing::WithParamInterface<std::size_t> {
  protected:
    const HiddenText userName{GetParam(), 11};
    const HiddenText domain{GetParam(), 17};
    const HiddenText password{GetParam(), 5};
    bool unpackSucceeds = true;
    std::size_t freedCopies = 0;

    std::size_t CountIn(const void* block, std::size_t size) const {
        return CountInBlock(userName, block, size) + CountInBlock(domain, block, size) +
               CountInBlock(password, block, size);
    }

    void ExpectNoCopies() const {
        EXPECT_EQ(CountInMemory(userName), 0U);
        EXPECT_EQ(CountInMemory(domain), 0U);
        EXPECT_EQ(CountInMemory(password), 0U);
    }

    /// What urlmon does with credentials: uses them, then wipes and frees them.
    static void Consume(LPWSTR text, const HiddenText& expected) {
        ASSERT_NE(text, nullptr);
        EXPECT_TRUE(expected.Equals(text));
        SecureZeroMemory(text, std::wcslen(text) * sizeof(wchar_t));
        CoTaskMemFree(text);
    }

    HRESULT PlayChallenge(IBindStatusCallback& callback) {
        ComPtr<IAuthenticate> authenticate;
        ComPtr<IHttpNegotiate> negotiate;
        EXPECT_EQ(callback.QueryInterface(IID_PPV_ARGS(&authenticate)), S_OK);
        EXPECT_EQ(callback.QueryInterface(IID_PPV_ARGS(&negotiate)), S_OK);
        HWND window = nullptr;
        LPWSTR givenUserName = nullptr;
        LPWSTR givenPassword = nullptr;
        EXPECT_EQ(authenticate->Authenticate(&window, &givenUserName, &givenPassword), S_OK);
        if (unpackSucceeds) {
            EXPECT_EQ(CountInMemory(userName), 1U) << "only what is handed over";
            EXPECT_EQ(CountInMemory(password), 1U) << "only what is handed over";
            EXPECT_EQ(CountInMemory(domain), 0U);
            Consume(givenUserName, userName);
            Consume(givenPassword, password);
        }
        ExpectNoCopies();
        negotiate->OnResponse(unpackSucceeds ? 200 : 401, L"", nullptr, nullptr);
        callback.OnStopBinding(S_OK, L"");
        return S_OK;
    }

    AuthenticationStatus Probe() {
        const FreedBlocksWatch watch(
            [this](const void* block, std::size_t size) { freedCopies += CountIn(block, size); });
        PlayedProbe probe([this](IBindStatusCallback& callback) { return PlayChallenge(callback); });
        ServerBasicAuthentication authentication(L"Log in", L"Caption", "http://server/", "", "viewer");
        return ProbeServer(authentication);
    }

    ReplacedImport<struct Read, decltype(CredReadW)> credRead{
        "advapi32.dll", "CredReadW", [](LPCWSTR, DWORD, DWORD, PCREDENTIALW*) -> BOOL { return FALSE; }};
    ReplacedImport<struct Write, decltype(CredWriteW)> credWrite{
        "advapi32.dll", "CredWriteW", [this](PCREDENTIALW credential, DWORD) -> BOOL {
            EXPECT_EQ(CountIn(credential->CredentialBlob, credential->CredentialBlobSize), 1U);
            return TRUE;
        }};
    ReplacedImport<struct Prompt, decltype(CredUIPromptForWindowsCredentialsW)> prompt{
        "credui.dll", "CredUIPromptForWindowsCredentialsW",
        [this](PCREDUI_INFOW, DWORD, ULONG*, LPCVOID, ULONG, LPVOID* output, ULONG* size, BOOL* save,
               DWORD) -> DWORD {
            // The secret is not at the beginning: there, a freed block is overwritten first.
            constexpr ULONG kOffset = 64;
            *size = kOffset + static_cast<ULONG>((password.Length() + 1) * sizeof(wchar_t));
            *output = CoTaskMemAlloc(*size);
            std::memset(*output, 0, *size);
            if (unpackSucceeds) {
                password.PutInto(reinterpret_cast<wchar_t*>(static_cast<char*>(*output) + kOffset));
            }
            *save = TRUE;
            return ERROR_SUCCESS;
        }};
    ReplacedImport<struct Unpack, decltype(CredUnPackAuthenticationBufferW)> unpack{
        "credui.dll", "CredUnPackAuthenticationBufferW",
        [this](DWORD, PVOID, DWORD, LPWSTR user, DWORD*, LPWSTR domainResult, DWORD*, LPWSTR pass,
               DWORD*) -> BOOL {
            userName.PutInto(user);
            domain.PutInto(domainResult);
            password.PutInto(pass);
            SetLastError(ERROR_INVALID_DATA);
            return unpackSucceeds ? TRUE : FALSE;
        }};
    ReplacedImport<struct FreeTask, decltype(CoTaskMemFree)> freeTaskMemory{
        "ole32.dll", "CoTaskMemFree", [this](void* block) {
            if (block != nullptr) {
                ComPtr<IMalloc> allocator;
                CoGetMalloc(1, &allocator);
                freedCopies += CountIn(block, allocator->GetSize(block));
            }
            decltype(freeTaskMemory)::Original(block);
        }};
};

TEST_P(ProbeWithSecrets, LeavesNoCopyOfThemInMemory) {
    EXPECT_EQ(Probe(), AuthenticationStatus::Authenticated);
    EXPECT_EQ(freedCopies, 0U);
    ExpectNoCopies();
}

TEST_P(ProbeWithSecrets, LeavesNoCopyOfThemWithTheWordTrace) {
    const ScopedVariable words(L"MERIDO_ZANWEBBROWSER_IMPLEMENTATION", L"trace");
    EXPECT_EQ(Probe(), AuthenticationStatus::Authenticated);
    EXPECT_EQ(freedCopies, 0U);
    ExpectNoCopies();
}

/// The password stands for the encoded credentials that the request has.
TEST_P(ProbeWithSecrets, TheTraceOfTheRequestLeavesNoCopyOfItsAuthorization) {
    constexpr std::string_view kBefore = "GET / HTTP/1.1\r\nHost: server\r\nAuthorization: Basic ";
    const ScopedVariable words(L"MERIDO_ZANWEBBROWSER_IMPLEMENTATION", L"trace");
    const auto binding = MakeFake<FakeBinding>();
    binding->hasHttpInfo = true;
    binding->queryInfo = [&](DWORD, void* buffer, DWORD* size) {
        const std::size_t length = kBefore.size() + password.Length();
        if (buffer == nullptr) {
            *size = static_cast<DWORD>(length);
        } else if (*size == length) {
            char* const text = static_cast<char*>(buffer);
            std::copy(kBefore.begin(), kBefore.end(), text);
            for (std::size_t index = 0; index < password.Length(); ++index) {
                text[kBefore.size() + index] = password.At(index);
            }
        }
        return S_OK;
    };
    {
        const FreedBlocksWatch watch(
            [this](const void* block, std::size_t size) { freedCopies += CountIn(block, size); });
        ServerBasicAuthentication callback(L"Log in", L"Caption", "http://server/", "", "viewer");
        AuthenticationStream stream(callback, L"", L"", "http://server/");
        stream.AddRef();
        stream.OnStartBinding(0, binding.Get());
        stream.OnStopBinding(S_OK, L"");
    }
    const Lines lines = TakeTranscript();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "[0] Authorization: (not traced)"), 2);
    EXPECT_EQ(freedCopies, 0U);
    ExpectNoCopies();
}

TEST_P(ProbeWithSecrets, LeavesNoCopyOfThemWhereTheAnswerCannotBeUnpacked) {
    unpackSucceeds = false;
    EXPECT_EQ(Probe(), AuthenticationStatus::Unauthorized);
    EXPECT_EQ(freedCopies, 0U);
    ExpectNoCopies();
}

TEST_P(ProbeWithSecrets, LeavesNoCopyOfThemWhereThereIsNoMemoryToHandThemOver) {
    for (int failing = 1; failing <= 2; ++failing) {
        int calls = 0;
        ReplacedImport<struct Allocate, decltype(CoTaskMemAlloc)> allocate(
            "ole32.dll", "CoTaskMemAlloc", [&](SIZE_T size) -> void* {
                constexpr SIZE_T kPackedSize = 64;
                return size < kPackedSize + GetParam() && ++calls == failing
                           ? nullptr
                           : decltype(allocate)::Original(size);
            });
        ServerBasicAuthentication callback(L"Log in", L"Caption", "http://server/", "", "viewer");
        AuthenticationStream stream(callback, L"", L"", "http://server/");
        HWND window = nullptr;
        LPWSTR none = nullptr;
        EXPECT_EQ(stream.Authenticate(&window, &none, &none), S_OK);
        EXPECT_EQ(none, nullptr);
    }
    EXPECT_EQ(freedCopies, 0U);
    ExpectNoCopies();
}

TEST_P(ProbeWithSecrets, TheSearchFindsACopyThatIsLeft) {
    std::array<wchar_t, 64> wide{};
    password.PutInto(wide.data());
    EXPECT_EQ(CountInMemory(password), 1U);
    EXPECT_EQ(CountIn(wide.data(), sizeof(wide)), 1U);
    std::string narrow;
    for (std::size_t index = 0; index < userName.Length(); ++index) {
        narrow += userName.At(index);
    }
    EXPECT_GE(CountInMemory(userName), 1U);
    {
        const FreedBlocksWatch watch(
            [this](const void* block, std::size_t size) { freedCopies += CountIn(block, size); });
        std::string(64, ' ').replace(8, narrow.size(), narrow); // a block with a copy in it is freed here
    }
    EXPECT_EQ(freedCopies, 1U);
    Wipe(narrow);
}

INSTANTIATE_TEST_SUITE_P(ShortAndLong, ProbeWithSecrets, ::testing::Values(6U, 40U));

TEST(Wipe, ZeroesAStringThatLivesInItsObject) {
    std::wstring text(L"secret");
    const wchar_t* const buffer = text.data();
    Wipe(text);
    EXPECT_TRUE(text.empty());
    for (std::size_t index = 0; index < 6; ++index) {
        EXPECT_EQ(buffer[index], L'\0') << index;
    }
}

TEST(Wipe, ZeroesTheWholeBufferOfAString) {
    std::string text(100, 's');
    text.resize(10); // the rest stays in the capacity
    const char* const buffer = text.data();
    Wipe(text);
    EXPECT_TRUE(text.empty());
    ASSERT_EQ(text.data(), buffer) << "wiped in place";
    for (std::size_t index = 0; index < 100; ++index) {
        EXPECT_EQ(buffer[index], '\0') << index;
    }
}

} // namespace
} // namespace kelda
