// What the tests of client certificates share: web views whose servers ask for one, and what those were told.
#pragma once

#include <algorithm>
#include <string>

#include "tests/support/scoped_variable.h"
#include "tests/unit/webview2_runtime/message_boxes.h"
#include "tests/unit/webview2_runtime/runtime_test.h"

namespace webview2_runtime_test {

using test_support::CannedServer;
using test_support::ScopedVariable;
using ClientCertificateArguments = ICoreWebView2ClientCertificateRequestedEventArgs;

constexpr wchar_t kClientCertificates[] = L"KELDA_TEST_CLIENT_CERTIFICATES";
constexpr wchar_t kCertificateBox[] = L"Select a certificate";

/// A page that asks for a style sheet of the same server.
inline test_support::CannedAnswer PageWithStyle(const std::string& request) {
    if (request.starts_with("GET /style.css ")) {
        return test_support::Answer(200, "Content-Type: text/css\r\n", "body { color: black }");
    }
    return test_support::Answer(200, "Content-Type: text/html\r\n",
                                "<link rel=icon href=data:,><link rel=stylesheet href=/style.css><body>page");
}

/// The last request of that path, or an empty text.
inline std::string RequestOf(const CannedServer& server, const std::string& path) {
    const auto requests = server.Requests();
    const auto found = std::find_if(requests.rbegin(), requests.rend(), [&](const auto& request) {
        return request.starts_with("GET " + path + " ");
    });
    return found == requests.rend() ? std::string() : *found;
}

/// What the server was told of a certificate with that request.
inline std::string Told(const CannedServer& server, const std::string& path) {
    return test_support::HeaderOf(RequestOf(server, path), "X-Client-Certificate");
}

inline ComPtr<ICoreWebView2ClientCertificateCollection>
CertificatesOf(ClientCertificateArguments* arguments) {
    ComPtr<ICoreWebView2ClientCertificateCollection> certificates;
    EXPECT_EQ(arguments->get_MutuallyTrustedCertificates(&certificates), S_OK);
    return certificates;
}

inline ComPtr<ICoreWebView2ClientCertificate> CertificateAt(ClientCertificateArguments* arguments,
                                                            UINT32 index) {
    ComPtr<ICoreWebView2ClientCertificate> certificate;
    EXPECT_EQ(CertificatesOf(arguments)->GetValueAtIndex(index, &certificate), S_OK);
    return certificate;
}

inline void Select(ClientCertificateArguments* arguments, UINT32 index) {
    EXPECT_EQ(arguments->put_SelectedCertificate(CertificateAt(arguments, index).Get()), S_OK);
    EXPECT_EQ(arguments->put_Handled(TRUE), S_OK);
}

inline std::wstring ServerOf(ClientCertificateArguments* arguments) {
    int port = 0;
    EXPECT_EQ(arguments->get_Port(&port), S_OK);
    return TextFrom([&](LPWSTR* text) { return arguments->get_Host(text); }) + L" " + std::to_wstring(port);
}

class ClientCertificateTest : public WebViewTest {
  protected:
    /// @param count the variable's value; null: not set.
    explicit ClientCertificateTest(const wchar_t* count) : variable_(kClientCertificates, count) {}

    CannedServer server{PageWithStyle};

  private:
    ScopedVariable variable_; // until the web view is made
};

class WithThreeClientCertificates : public ClientCertificateTest {
  protected:
    WithThreeClientCertificates() : ClientCertificateTest(L"3") {}
};

class WithoutClientCertificates : public ClientCertificateTest {
  protected:
    WithoutClientCertificates() : ClientCertificateTest(L"0") {}
};

class WithoutTheHook : public ClientCertificateTest {
  protected:
    WithoutTheHook() : ClientCertificateTest(nullptr) {}
};

} // namespace webview2_runtime_test
