// A request is known by its URL alone; Chromium has normalised that.
#include "client_certificate_requests.h"

#include <algorithm>
#include <charconv>

#include "header_collection.h"
#include "testbed/windows_gaps/environment_text.h"

namespace webview2_runtime {
namespace {

constexpr char kHeader[] = "X-Client-Certificate";

std::optional<unsigned int> CountOfVariable() {
    const std::wstring text = windows_gaps::EnvironmentText(L"KELDA_TEST_CLIENT_CERTIFICATES").value_or(L"");
    if (text.size() != 1 || text.front() < L'0' || text.front() > L'9') {
        return std::nullopt;
    }
    return static_cast<unsigned int>(text.front() - L'0');
}

std::string_view WithoutBrackets(std::string_view host) {
    return host.starts_with('[') && host.ends_with(']') ? host.substr(1, host.size() - 2) : host;
}

} // namespace

Origin OriginOf(std::string_view url) {
    const std::size_t schemeEnd = url.find("://");
    Origin origin;
    origin.scheme = url.substr(0, schemeEnd);
    std::string_view authority = url.substr(schemeEnd + 3);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos) {
        authority.remove_prefix(at + 1);
    }
    const std::size_t colon = authority.rfind(':');
    const bool hasPort = colon != std::string_view::npos && !authority.ends_with(']');
    origin.host = WithoutBrackets(authority.substr(0, hasPort ? colon : authority.size()));
    origin.port = origin.scheme == "https" ? 443 : 80;
    if (hasPort) {
        std::from_chars(authority.data() + colon + 1, authority.data() + authority.size(), origin.port);
    }
    return origin;
}

ClientCertificateRequests::ClientCertificateRequests() : count_(CountOfVariable()) {}

void ClientCertificateRequests::Decide(const Origin& origin, const std::optional<std::wstring>& subject) {
    decisions_.push_back({origin, subject});
}

void ClientCertificateRequests::Tell(const Origin& origin, testbed::chromium::Headers& headers) const {
    std::erase_if(headers, Named(kHeader));
    const auto found = Find(origin);
    if (found != decisions_.end() && found->subject.has_value()) {
        headers.push_back({kHeader, testbed::chromium::ToUtf8(*found->subject)});
    }
}

std::vector<ClientCertificateRequests::Decision>::const_iterator
ClientCertificateRequests::Find(const Origin& origin) const {
    return std::ranges::find(decisions_, origin, &Decision::origin);
}

} // namespace webview2_runtime
