// What the tests of the engine share: a profile folder, a client that remembers, a site.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "testbed/chromium/browser.h"
#include "testbed/chromium/page.h"
#include "testbed/chromium/page_session.h"
#include "testbed/chromium/page_view.h"
#include "tests/support/canned_server.h"
#include "tests/support/message_pump.h"

namespace chromium_test {

using namespace testbed::chromium;
using test_support::PumpUntil;

/// A folder that is not there yet, below the folder for temporary files. It is removed in the end. By then no process may use
/// it.
class ProfileFolder {
  public:
    /// @param extra is added to the name.
    explicit ProfileFolder(const std::wstring& extra = {});
    ~ProfileFolder();
    ProfileFolder(const ProfileFolder&) = delete;
    ProfileFolder& operator=(const ProfileFolder&) = delete;

    const std::wstring& Path() const { return path_; }
    /// The numbers of the machine's processes that have this folder in their command line: of Chromium, of its launcher, and
    /// of another host.
    std::vector<int> Processes() const;
    /// Of those, the browser's own; 0 if there is none.
    int Chromium() const;
    /// What a variable of its environment was when it started; empty if it had none.
    std::string ChromiumVariable(const std::string& name) const;
    /// Kills the browser's own process as a crash would.
    void KillChromium() const;
    /// Kills the processes that run its pages.
    void KillRenderers() const;
    /// Stops that process; it goes on after so many seconds.
    void HoldChromium(int seconds) const;
    /// Stops that process; nothing lets it go on.
    void StopChromium() const;

  private:
    std::wstring top_;
    std::wstring path_;
    std::string mark_; // in the command line of each such process
};

/// Remembers all, and does what a test has told it to.
class RecordingClient final : public PageClient {
  public:
    bool OnNavigationStarting(const NavigationStart& start) override {
        starts.push_back(start);
        return !onStarting || onStarting(start);
    }
    void OnRequest(Request& request) override {
        requests.push_back(request);
        if (onRequest) {
            onRequest(request);
        }
    }
    void OnResponse(const Response& response) override {
        responses.push_back(response);
        if (onResponse) {
            onResponse(response);
        }
    }
    CertificateDecision OnCertificateError(const CertificateProblem& problem) override {
        problems.push_back(problem);
        return onCertificate ? onCertificate(problem) : CertificateDecision::Cancel;
    }
    AuthenticationAnswer OnAuthenticationRequested(const AuthenticationChallenge& challenge) override {
        challenges.push_back(challenge);
        return onChallenge ? onChallenge(challenge) : AuthenticationAnswer{};
    }
    void OnNavigationCompleted(const NavigationOutcome& outcome) override {
        outcomes.push_back(outcome);
        if (onCompleted) {
            onCompleted(outcome);
        }
    }
    void OnBridgeMessage(const std::string& message, std::function<void(const std::string&)> reply) override {
        messages.push_back(message);
        if (onMessage) {
            onMessage(message, reply);
        }
    }
    void OnCrashed(Crash crash) override { crashes.push_back(crash); }

    std::vector<NavigationStart> starts;
    std::vector<Request> requests;
    std::vector<Response> responses;
    std::vector<CertificateProblem> problems;
    std::vector<AuthenticationChallenge> challenges;
    std::vector<NavigationOutcome> outcomes;
    std::vector<std::string> messages;
    std::vector<Crash> crashes;
    std::function<bool(const NavigationStart&)> onStarting;
    std::function<void(Request&)> onRequest;
    std::function<void(const Response&)> onResponse;
    std::function<CertificateDecision(const CertificateProblem&)> onCertificate;
    std::function<AuthenticationAnswer(const AuthenticationChallenge&)> onChallenge;
    std::function<void(const NavigationOutcome&)> onCompleted;
    std::function<void(const std::string&, std::function<void(const std::string&)>)> onMessage;
};

/// Pages by their path; all else is not found.
class Site {
  public:
    Site();

    void Add(const std::string& path, const std::string& html, const std::string& headers = {});
    void Add(const std::string& path, test_support::CannedAnswer answer);
    /// Of this path nothing is answered.
    void AddStalled(const std::string& path);

    std::string Url(const std::string& path) const;
    /// Of the path, in order.
    std::vector<std::string> Requests(const std::string& path) const;

  private:
    std::map<std::string, test_support::CannedAnswer> answers_; // complete before the first request
    test_support::CannedServer server_;
};

/// Calls a function again and again from the message loop, be it that of a message box, as long as it lives. There is one at
/// a time.
class Ticks {
  public:
    explicit Ticks(std::function<void()> tick) : tick_(std::move(tick)) {
        current = this;
        timer_ =
            SetTimer(nullptr, 0, USER_TIMER_MINIMUM, [](HWND, UINT, UINT_PTR, DWORD) { current->tick_(); });
    }
    ~Ticks() { KillTimer(nullptr, timer_); }
    Ticks(const Ticks&) = delete;
    Ticks& operator=(const Ticks&) = delete;

  private:
    static inline Ticks* current = nullptr;
    std::function<void()> tick_;
    UINT_PTR timer_ = 0;
};

/// The message box with that title, or null.
HWND FindBox(const std::string& title);

struct Opening {
    bool answered = false;
    std::shared_ptr<Browser> browser;
    DWORD error = 0;
};

/// @return what came of it; not answered if the deadline has passed.
Opening OpenBrowser(const std::wstring& folder, const BrowserOptions& options = {});

/// Opens the browser that the cases of this program share, on a folder of its own. Opens another one once that has crashed.
/// @return null on any failure.
std::shared_ptr<Browser> SharedBrowser();

/// Ends the shared browser; no process of it may be left. The end of the program does the same.
void EndSharedBrowser();

/// Lists what Chromium calls its pages; "no reply" on a failure.
std::vector<std::string> PagesOf(const Browser& browser);

/// @return null on any failure.
std::unique_ptr<Page> CreatePage(Browser& browser, PageClient& client, bool inPrivate = false);

/// Navigates, and waits until that has been completed.
/// @return the outcome; its id is 0 if the deadline has passed.
NavigationOutcome Visit(Page& page, RecordingClient& client, const std::string& url,
                        const Headers& headers = {});

/// @return the result as JSON, or a text that no JSON is.
std::string Evaluate(Page& page, const std::string& expression);

/// A Chromium without any page.
/// @return null on any failure.
std::shared_ptr<Connection> StartChromium(const ProfileFolder& folder);

/// The session of a new page for which nothing has been set up.
///
/// @param mainFrame how events call it.
/// @return null if the deadline has passed.
std::shared_ptr<PageSession> OpenBarePage(const std::shared_ptr<Connection>& connection,
                                          const std::string& mainFrame = {});

/// A page of the shared browser. At the end of a case that browser may have no page left; its cookies are deleted. All else
/// that Chromium remembers belongs to a server, and each case has servers of its own.
class ChromiumTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Exchanges the browser and the page for new ones, on a folder of the case's own. For cases about the browser's end.
    void UseBrowserOfItsOwn();

    ProfileFolder folder_; // not used by the shared browser
    Site site_;
    RecordingClient client_;
    std::shared_ptr<Browser> browser_;
    std::unique_ptr<Page> page_;

  private:
    void UseBrowser(const std::shared_ptr<Browser>& browser);

    std::shared_ptr<Browser> shared_; // null with a browser of its own
};

} // namespace chromium_test
