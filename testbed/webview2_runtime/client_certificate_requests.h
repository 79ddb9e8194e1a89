// A fault hook: servers that ask for a client certificate, which Chromium goes without in silence. What has been decided is
// told to the server by a header, as a proxy would that ends the TLS in front of it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "testbed/chromium/page_client.h"

namespace webview2_runtime {

/// Where a request goes to.
struct Origin {
    std::string scheme;
    std::string host; ///< an address of IPv6 without its brackets
    int port = 0;     ///< the scheme's own where the URL has none

    bool operator==(const Origin&) const = default;
};

/// @param url of http or https, as Chromium writes it.
Origin OriginOf(std::string_view url);

/// The decisions of one web view: each server asks once.
class ClientCertificateRequests {
  public:
    /// Reads the variable of the hook.
    ClientCertificateRequests();

    bool On() const { return count_.has_value(); }
    /// How many certificates there are to choose from.
    unsigned int Count() const { return count_.value_or(0); }

    bool Decided(const Origin& origin) const { return Find(origin) != decisions_.end(); }

    /// To be called once for a server.
    ///
    /// @param subject of the certificate; nothing for none.
    void Decide(const Origin& origin, const std::optional<std::wstring>& subject);

    /// Makes the header of a request say what was decided, whatever it said before.
    void Tell(const Origin& origin, testbed::chromium::Headers& headers) const;

  private:
    struct Decision {
        Origin origin;
        std::optional<std::wstring> subject;
    };

    std::vector<Decision>::const_iterator Find(const Origin& origin) const;

    std::optional<unsigned int> count_;
    std::vector<Decision> decisions_; // one for each server
};

} // namespace webview2_runtime
