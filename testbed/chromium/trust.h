// Certificates that Chromium does not trust, and servers that do not trust Chromium.
#pragma once

#include <set>
#include <string>
#include <tuple>

#include "testbed/chromium/connection.h"
#include "testbed/chromium/page_client.h"

namespace testbed::chromium {

/// The certificates that clients have allowed. Chromium itself asks again with the next connection. It does not show the
/// certificate, so one is taken for another that has the same fault and the same server.
class AllowedCertificates {
  public:
    /// @param profile whose pages have it allowed.
    void Add(const std::string& profile, const CertificateProblem& problem);
    bool Contain(const std::string& profile, const CertificateProblem& problem) const;

  private:
    using Key = std::tuple<std::string, std::string, NavigationError>;
    static Key KeyOf(const std::string& profile, const CertificateProblem& problem);

    std::set<Key> keys_;
};

/// @param params of Security.certificateError.
CertificateProblem ProblemFrom(const Json& params);

/// @param params of Fetch.authRequired.
AuthenticationChallenge ChallengeFrom(const Json& params);

/// Parameters of the Fetch.continueWithAuth for that challenge.
Json AnswerParameters(const Json& params, const AuthenticationAnswer& answer);

} // namespace testbed::chromium
