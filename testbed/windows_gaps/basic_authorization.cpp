// Puts the header together without leaving anything of it behind.
#include "basic_authorization.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include <wincrypt.h>

namespace windows_gaps {
namespace {

constexpr DWORD kEncoding = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
constexpr std::wstring_view kStart = L"Authorization: Basic ";
constexpr std::wstring_view kEnd = L"\r\n";

/// Bytes that are zeroed before they are freed.
class SecretBytes {
  public:
    explicit SecretBytes(std::size_t size) : bytes_(std::make_unique<char[]>(size)), size_(size) {}
    ~SecretBytes() { SecureZeroMemory(bytes_.get(), size_); }
    SecretBytes(const SecretBytes&) = delete;
    SecretBytes& operator=(const SecretBytes&) = delete;
    char* Data() { return bytes_.get(); }

  private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_;
};

/// @return the bytes that the text takes in UTF-8, terminator included.
int Utf8Size(LPCWSTR text) {
    return WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
}

} // namespace

SecretText BasicAuthorizationLine(const OfferedCredentials& credentials) {
    const int userSize = Utf8Size(credentials.userName.CStr());
    const int passwordSize = Utf8Size(credentials.password.CStr());
    SecretBytes pair(static_cast<std::size_t>(userSize) + static_cast<std::size_t>(passwordSize));
    WideCharToMultiByte(CP_UTF8, 0, credentials.userName.CStr(), -1, pair.Data(), userSize, nullptr, nullptr);
    pair.Data()[userSize - 1] = ':'; // in place of the terminator
    WideCharToMultiByte(CP_UTF8, 0, credentials.password.CStr(), -1, pair.Data() + userSize, passwordSize,
                        nullptr, nullptr);

    const auto* bytes = reinterpret_cast<const BYTE*>(pair.Data());
    const auto byteCount = static_cast<DWORD>(userSize + passwordSize - 1);
    DWORD encodedSize = 0; // terminator included
    CryptBinaryToStringW(bytes, byteCount, kEncoding, nullptr, &encodedSize);
    SecretText line(kStart.size() + encodedSize + kEnd.size());
    wchar_t* end = std::ranges::copy(kStart, line.Data()).out;
    CryptBinaryToStringW(bytes, byteCount, kEncoding, end, &encodedSize);
    std::ranges::copy(kEnd, line.Data() + line.View().size());
    return line;
}

} // namespace windows_gaps
