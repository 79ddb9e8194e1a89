// All of them are of the same authority and of the same years.
#include "client_certificates.h"

#include <array>

#include "com_text.h"

namespace webview2_runtime {
namespace {

constexpr double kStartOf2024 = 1704067200; // seconds since 1970
constexpr double kStartOf2100 = 4102444800;

/// One byte, in base64.
constexpr std::array<const wchar_t*, 9> kSerialNumbers = {L"AQ==", L"Ag==", L"Aw==", L"BA==", L"BQ==",
                                                          L"Bg==", L"Bw==", L"CA==", L"CQ=="};

} // namespace

ClientCertificate::ClientCertificate(unsigned int number)
    : number_(number), subject_(L"Test client " + std::to_wstring(number)) {}

HRESULT ClientCertificate::get_Subject(LPWSTR* value) {
    return Guarded([&] { return CopyOut(subject_, value); });
}

HRESULT ClientCertificate::get_Issuer(LPWSTR* value) {
    return Guarded([&] { return CopyOut(L"Test authority", value); });
}

HRESULT ClientCertificate::get_ValidFrom(double* value) {
    return GuardedGet(value, [] { return kStartOf2024; });
}

HRESULT ClientCertificate::get_ValidTo(double* value) {
    return GuardedGet(value, [] { return kStartOf2100; });
}

HRESULT ClientCertificate::get_DerEncodedSerialNumber(LPWSTR* value) {
    return Guarded([&] { return CopyOut(kSerialNumbers.at(number_ - 1), value); });
}

HRESULT ClientCertificate::get_DisplayName(LPWSTR* value) {
    return Guarded([&] { return CopyOut(L"Certificate of " + subject_, value); });
}

HRESULT ClientCertificate::get_Kind(COREWEBVIEW2_CLIENT_CERTIFICATE_KIND* value) {
    return GuardedGet(value, [] { return COREWEBVIEW2_CLIENT_CERTIFICATE_KIND_OTHER; });
}

ClientCertificateList::ClientCertificateList(unsigned int length) {
    for (unsigned int number = 1; number <= length; ++number) {
        certificates_.push_back(MakeObject<ClientCertificate>(number));
    }
}

HRESULT ClientCertificateList::get_Count(UINT32* value) {
    return GuardedGet(value, [&] { return static_cast<UINT32>(certificates_.size()); });
}

HRESULT ClientCertificateList::GetValueAtIndex(UINT32 index, ICoreWebView2ClientCertificate** value) {
    return Guarded([&]() -> HRESULT {
        if (value == nullptr) {
            return E_POINTER;
        }
        return index < certificates_.size() ? HandOut(certificates_[index], value) : E_INVALIDARG;
    });
}

} // namespace webview2_runtime
