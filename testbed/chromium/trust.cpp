// What is remembered of certificates, and both in the words of the protocol.
#include "testbed/chromium/trust.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "testbed/chromium/navigations.h"

namespace testbed::chromium {
namespace {

struct SchemeName {
    std::string_view chromiums;
    std::string_view servers;
    bool hasRealm;
};

constexpr std::array kSchemeNames = {
    SchemeName{"basic", "Basic", true},
    SchemeName{"digest", "Digest", true},
    SchemeName{"negotiate", "Negotiate", false},
    SchemeName{"ntlm", "NTLM", false},
};

/// Scheme, host and port.
std::string OriginOf(const std::string& url) {
    const std::size_t host = url.find("//");
    return host == std::string::npos ? url : url.substr(0, url.find_first_of("/?#", host + 2));
}

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted + '"';
}

} // namespace

void AllowedCertificates::Add(const std::string& profile, const CertificateProblem& problem) {
    keys_.insert(KeyOf(profile, problem));
}

bool AllowedCertificates::Contain(const std::string& profile, const CertificateProblem& problem) const {
    return keys_.contains(KeyOf(profile, problem));
}

AllowedCertificates::Key AllowedCertificates::KeyOf(const std::string& profile,
                                                    const CertificateProblem& problem) {
    return {profile, OriginOf(problem.url), problem.error};
}

CertificateProblem ProblemFrom(const Json& params) {
    const auto url = params.at("requestURL").get<std::string>();
    const NavigationError error = ErrorFromText(params.at("errorType").get_ref<const std::string&>());
    return {url.substr(0, url.find('#')),
            error == NavigationError::Unknown ? NavigationError::CertificateInvalid : error};
}

AuthenticationChallenge ChallengeFrom(const Json& params) {
    const Json& challenge = params.at("authChallenge");
    const auto scheme = challenge.at("scheme").get<std::string>();
    const auto known = std::ranges::find(kSchemeNames, scheme, &SchemeName::chromiums);
    const bool hasRealm = known == kSchemeNames.end() || known->hasRealm;
    std::string text = known == kSchemeNames.end() ? scheme : std::string(known->servers);
    if (hasRealm) {
        text += " realm=" + Quoted(challenge.at("realm").get_ref<const std::string&>());
    }
    return {params.at("request").at("url").get<std::string>(), text};
}

Json AnswerParameters(const Json& params, const AuthenticationAnswer& answer) {
    Json response = {{"response", answer.cancelled ? "CancelAuth" : "ProvideCredentials"}};
    if (!answer.cancelled) {
        response["username"] = answer.user;
        response["password"] = answer.password;
    }
    return {{"requestId", params.at("requestId")}, {"authChallengeResponse", std::move(response)}};
}

} // namespace testbed::chromium
