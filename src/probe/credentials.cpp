// The credential prompt and the credential store.
#include "probe/credentials.h"

#include <array>
#include <memory>
#include <optional>

#include <wincred.h>

#include "du/string_utilities.h"
#include "probe/authentication_stream.h"
#include "support/trace.h"
#include "support/url_display.h"
#include "support/wipe.h"

namespace kelda {
namespace {

constexpr size_t kDisplayedUrlLength = 50;

/// Zeroes what the entry holds of the user's answer, and frees the entry.
struct CredentialDeleter {
    void operator()(CREDENTIALW* credential) const noexcept {
        SecureZeroMemory(credential->CredentialBlob, credential->CredentialBlobSize);
        CredFree(credential);
    }
};
using StoredCredential = std::unique_ptr<CREDENTIALW, CredentialDeleter>;

/// The prompt's answer in the system's opaque form. Not an owner: see `TakeAnswer`.
struct PackedAnswer {
    void* data = nullptr;
    ULONG size = 0;
};

/// Zeroes and frees an answer when the scope ends.
class AnswerDisposal {
  public:
    explicit AnswerDisposal(const PackedAnswer& answer) noexcept : answer_(answer) {}
    ~AnswerDisposal() {
        SecureZeroMemory(answer_.data, answer_.size);
        CoTaskMemFree(answer_.data);
    }
    AnswerDisposal(const AnswerDisposal&) = delete;
    AnswerDisposal& operator=(const AnswerDisposal&) = delete;

  private:
    PackedAnswer answer_;
};

/// The prompt's answer in clear, zeroed when it goes.
struct UnpackedAnswer {
    std::array<wchar_t, CREDUI_MAX_USERNAME_LENGTH + 1> userName{};
    std::array<wchar_t, CREDUI_MAX_DOMAIN_TARGET_LENGTH + 1> domain{};
    std::array<wchar_t, CREDUI_MAX_PASSWORD_LENGTH + 1> password{};

    UnpackedAnswer() = default;
    ~UnpackedAnswer() { SecureZeroMemory(this, sizeof(*this)); }
    UnpackedAnswer(const UnpackedAnswer&) = delete;
    UnpackedAnswer& operator=(const UnpackedAnswer&) = delete;
};
static_assert(sizeof(UnpackedAnswer) == (514 + 338 + 257) * sizeof(wchar_t));

StoredCredential ReadStored(const std::wstring& target) {
    CREDENTIALW* stored = nullptr;
    return StoredCredential(CredReadW(target.c_str(), CRED_TYPE_GENERIC, 0, &stored) != FALSE ? stored
                                                                                              : nullptr);
}

DWORD ShowPrompt(CREDUI_INFOW& info, const std::wstring& target, BOOL& save, PackedAnswer& packed) {
    const StoredCredential stored = ReadStored(target);
    const void* storedBlob = nullptr;
    ULONG storedSize = 0;
    if (stored) {
        // An entry without a blob may read back with a pointer to nothing: the size decides.
        storedSize = stored->CredentialBlob != nullptr ? stored->CredentialBlobSize : 0;
        storedBlob = storedSize != 0 ? stored->CredentialBlob : nullptr;
        save = storedBlob != nullptr ? TRUE : FALSE;
    }
    ULONG authPackage = 0;
    return CredUIPromptForWindowsCredentialsW(&info, 0, &authPackage, storedBlob, storedSize, &packed.data,
                                              &packed.size, &save, CREDUIWIN_GENERIC | CREDUIWIN_CHECKBOX);
}

/// Keeps the packed answer under the server's name. With an unticked box the entry is written without it, which clears
/// what was saved before. A failure is silent: all that is lost is the convenience of the next prompt.
void Store(const std::wstring& target, BOOL save, const PackedAnswer& packed) {
    std::wstring targetCopy = target; // the structure wants it writable
    CREDENTIALW credential{};
    credential.Type = CRED_TYPE_GENERIC;
    credential.TargetName = targetCopy.data();
    credential.Persist = CRED_PERSIST_LOCAL_MACHINE;
    if (save != FALSE) {
        credential.CredentialBlob = static_cast<BYTE*>(packed.data);
        credential.CredentialBlobSize = packed.size;
    }
    CredWriteW(&credential, 0);
}

bool Unpack(const PackedAnswer& packed, UnpackedAnswer& answer) {
    auto userNameSize = static_cast<DWORD>(answer.userName.size());
    auto domainSize = static_cast<DWORD>(answer.domain.size());
    auto passwordSize = static_cast<DWORD>(answer.password.size());
    return CredUnPackAuthenticationBufferW(0, packed.data, packed.size, answer.userName.data(), &userNameSize,
                                           answer.domain.data(), &domainSize, answer.password.data(),
                                           &passwordSize) != FALSE;
}

void AssignUtf8(std::string& result, const wchar_t* text) {
    // Converted in place and then copied: a temporary would keep its characters in its in-place buffer.
    std::string converted = du::WideStrToUtf8(text);
    const WipeOnExit wipe(converted);
    result = converted;
}

/// Unpacks the answer, stores it and frees it. An answer that cannot be unpacked is left as it is, neither wiped nor
/// freed: deliberate.
DWORD TakeAnswer(const PackedAnswer& packed, const std::wstring& target, BOOL save, std::string& userName,
                 std::string& password) {
    auto answer = std::optional<UnpackedAnswer>(std::in_place);
    if (!Unpack(packed, *answer)) {
        const DWORD error = GetLastError();
        kBasicAuthenticationTrace.Failure()
            << "CredUnPackAuthenticationBuffer() failed. Error code = " << error;
        return error;
    }
    const AnswerDisposal disposal(packed);
    AssignUtf8(userName, answer->userName.data());
    AssignUtf8(password, answer->password.data());
    answer.reset(); // wiped before the store is written to, which takes its time
    Store(target, save, packed);
    return ERROR_SUCCESS;
}

} // namespace

DWORD PromptForCredentials(AuthenticationStream& stream, const std::wstring& promptText,
                           const std::wstring& captionText, std::string& userName, std::string& password) {
    // Deliberate: the host is asked for its window, but the prompt stands for itself on the desktop.
    stream.Callback().GetParentWindow();

    const std::wstring message =
        promptText + L"\n" + du::Utf8ToWideStr(TrimUrlForDisplay(stream.ServerUrl(), kDisplayedUrlLength));
    CREDUI_INFOW info{};
    info.cbSize = sizeof(info);
    info.hwndParent = nullptr;
    info.pszMessageText = message.c_str();
    info.pszCaptionText = captionText.c_str();

    const std::wstring target = du::Utf8ToWideStr(stream.ServerUrl());
    PackedAnswer packed;
    const DWORD error = ShowPrompt(info, target, stream.SaveCredentials(), packed);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    return TakeAnswer(packed, target, stream.SaveCredentials(), userName, password);
}

} // namespace kelda
