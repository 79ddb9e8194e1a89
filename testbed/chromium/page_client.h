// What a page tells its owner: implemented by whatever face shows the page to a host.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace testbed::chromium {

struct Header {
    std::string name;
    std::string value;

    bool operator==(const Header&) const = default;
};
using Headers = std::vector<Header>;

/// A navigation of the main frame, before its request goes out.
struct NavigationStart {
    std::uint64_t id = 0; ///< the same for all redirects of a navigation, and at its completion
    std::string url;
    bool redirected = false; ///< `url` is where a server's redirect leads
};

/// Why a navigation failed, by meaning.
enum class NavigationError {
    None,
    Unknown,
    Aborted, ///< cancelled, stopped, superseded, without content, or a download
    CannotConnect,
    HostNameNotResolved,
    ServerUnreachable, ///< the connection was closed without an answer
    ConnectionReset,
    Disconnected,
    Timeout,
    RedirectFailed,
    CertificateCommonNameIncorrect,
    CertificateExpired,
    CertificateInvalid,
    CertificateRevoked,
    ValidAuthenticationRequired, ///< the server answered with 401, and its body is shown
    HttpStatus,                  ///< likewise, with 400 or above
    RendererCrashed              ///< also when all of Chromium has gone
};

struct NavigationOutcome {
    std::uint64_t id = 0;
    std::string url; ///< the last one of the navigation
    bool success = false;
    NavigationError error = NavigationError::None;
    int httpStatus = 0; ///< 0 without an answer
};

enum class ResourceKind {
    Document, ///< also of a frame
    Stylesheet,
    Image,
    Media,
    Font,
    Script,
    Fetch, ///< also XMLHttpRequest and event sources
    Ping,
    Other
};

/// A request that waits for its client.
struct Request {
    std::string url;
    std::string method;
    ResourceKind kind = ResourceKind::Other;
    bool mainDocument = false; ///< of the main frame itself
    bool redirected = false;
    /// In the order of Chromium; may be edited, and what it then holds is sent. Cookies are added later and not listed.
    Headers headers;
};

/// An answer to a request.
struct Response {
    std::string url; ///< of the request
    std::string method;
    /// As they went out, cookies included; their order is Chromium's. Where a challenge was answered meanwhile, they are those
    /// of the first attempt.
    Headers requestHeaders;
    int status = 0;
    std::string reason; ///< empty where the protocol has none
    /// In the order, and as often, as the server sent them; the value of each is as it was on the wire.
    Headers headers;
};

/// A certificate that Chromium does not trust.
struct CertificateProblem {
    std::string url; ///< of the request that met it
    NavigationError error = NavigationError::CertificateInvalid;
};

enum class CertificateDecision {
    Cancel,     ///< the request is aborted
    AlwaysAllow ///< remembered for that profile, host, port and fault as long as Chromium runs
};

/// A server, or a proxy, asks for a user name and a password.
struct AuthenticationChallenge {
    std::string url;       ///< of the request
    std::string challenge; ///< as in a WWW-Authenticate header: `Basic realm="documents"`
};

/// What to answer a challenge with.
struct AuthenticationAnswer {
    bool cancelled = true; ///< what came with the challenge is shown
    std::string user;
    std::string password;
};

/// What has gone.
enum class Crash {
    Renderer, ///< the page shows nothing until it is navigated again
    Browser   ///< everything; only `Close` is of use now
};

/// All functions are called from the message loop of the page's thread, one after another: while one of them runs, even in
/// a message loop of its own, further ones wait; only callbacks and the painting go on. In each of them the page may be
/// closed or destroyed, and so may its browser. They must not throw.
class PageClient {
  public:
    /// Called first for a navigation, and again for each redirect.
    ///
    /// @return false to cancel: the old page stays, and `OnNavigationCompleted` reports `Aborted`.
    virtual bool OnNavigationStarting(const NavigationStart& start) = 0;

    /// Called for each request of http and https while interception is on, once for each redirect; for that of a navigation
    /// after `OnNavigationStarting`.
    virtual void OnRequest(Request& request) = 0;

    /// Called for each answer to a request of http and https, that of a redirect and one from the cache included; but not for
    /// one that Chromium keeps from the page, nor for a challenge whose answer led to another one. The answer to a
    /// navigation's request comes before the redirect that follows it, and before the navigation is completed.
    virtual void OnResponse(const Response& response) = 0;

    /// Called while `Page::SetCertificateReports` is on; the request waits. A navigation that is cancelled so fails with the
    /// certificate's error, and the old page stays.
    virtual CertificateDecision OnCertificateError(const CertificateProblem& problem) = 0;

    /// Called for each challenge that a page meets; the request waits. Wrong credentials bring another one.
    virtual AuthenticationAnswer OnAuthenticationRequested(const AuthenticationChallenge& challenge) = 0;

    /// Called once for each navigation that `OnNavigationStarting` was called for: a success when the load event of the
    /// page has run.
    virtual void OnNavigationCompleted(const NavigationOutcome& outcome) = 0;

    /// A text that the bridge's script has sent.
    ///
    /// @param reply hands a text to the script of that very document; to be called any number of times, at any time, on the
    ///        page's thread. It does nothing once the document or the page has gone.
    virtual void OnBridgeMessage(const std::string& message,
                                 std::function<void(const std::string& text)> reply) = 0;

    /// Called after the callbacks have failed and an open navigation has been completed as a failure.
    virtual void OnCrashed(Crash crash) = 0;

  protected:
    PageClient() = default;
    ~PageClient() = default;
    PageClient(const PageClient&) = default;
    PageClient& operator=(const PageClient&) = default;
};

} // namespace testbed::chromium
