// Canned servers that want a password, and what their requests tell.
#pragma once

#include <string>
#include <vector>

#include "tests/support/canned_server.h"

namespace windows_gaps_test {

inline const std::string kChallenge = "WWW-Authenticate: Basic realm=\"Docs\"\r\n";

/// What a browser sends for user "ann", password "secret".
inline const std::string kAnn = "Basic YW5uOnNlY3JldA==";

/// Challenges every request that does not carry `authorization`; `challenge` is complete header lines.
inline test_support::CannedServer::Answerer Protected(const std::string& authorization = kAnn,
                                                      const std::string& challenge = kChallenge) {
    return [=](const std::string& request) {
        return test_support::HeaderOf(request, "Authorization") == authorization
                   ? test_support::Answer(200, "", "the document")
                   : test_support::Answer(401, challenge, "denied");
    };
}

/// "PATH" or "PATH with AUTHORIZATION" of each request.
inline std::vector<std::string> Summary(const test_support::CannedServer& server) {
    std::vector<std::string> summary;
    for (const std::string& request : server.Requests()) {
        const std::size_t start = request.find(' ') + 1;
        const std::string authorization = test_support::HeaderOf(request, "Authorization");
        summary.push_back(request.substr(start, request.find(' ', start) - start) +
                          (authorization.empty() ? "" : " with " + authorization));
    }
    return summary;
}

} // namespace windows_gaps_test
