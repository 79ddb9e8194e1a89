// The page of a control: comes up with its Chromium when it is needed, and keeps cookies and User-Agent as Windows has them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <windows.h>

#include <nlohmann/json.hpp>

#include "com_object.h"
#include "cookie_mirror.h"
#include "profile_folder.h"
#include "testbed/chromium/browser.h"
#include "testbed/chromium/page.h"
#include "testbed/chromium/page_client.h"

namespace legacy_control {

/// What a page tells the control. In each of these functions the page may be closed.
class EnginePageOwner {
  public:
    /// There is a page now, and it may be shown.
    virtual void OnPage(testbed::chromium::Page& page) = 0;
    /// There is no page any more, or none could be had. What was wanted of it is lost.
    virtual void OnPageLost() = 0;

    /// @param wanted whether `Navigate` has started it.
    /// @return false to cancel.
    virtual bool OnStarting(const testbed::chromium::NavigationStart& start, bool wanted) = 0;
    virtual void OnAnswer(const testbed::chromium::Response& response) = 0;
    virtual void OnCompleted(const testbed::chromium::NavigationOutcome& outcome) = 0;
    /// Of the document script; see document_shim.h.
    virtual void OnMessage(const nlohmann::json& message,
                           const std::function<void(const std::string& text)>& reply) = 0;

    EnginePageOwner(const EnginePageOwner&) = delete;
    EnginePageOwner& operator=(const EnginePageOwner&) = delete;

  protected:
    EnginePageOwner() = default;
    ~EnginePageOwner() = default;
};

/// Belongs to the thread that made it. Held by shared pointers, as Chromium's answers may come when nobody else wants them.
class EnginePage final : public std::enable_shared_from_this<EnginePage>,
                         private testbed::chromium::PageClient {
  public:
    explicit EnginePage(EnginePageOwner& owner) : owner_(&owner) {}
    ~EnginePage();
    EnginePage(const EnginePage&) = delete;
    EnginePage& operator=(const EnginePage&) = delete;

    /// Has the page come up, unless it is there or on its way.
    void Open();

    /// Loads a URL, as soon as there is a page. An earlier one that has not been started by then is dropped.
    void Navigate(const std::string& url);

    /// @return whether a navigation was dropped that the page had not heard of yet; one that it has heard of is aborted.
    bool Stop();

    /// The owner hears no more. Waits until Chromium has ended, if this was its last page.
    void Close();

    /// Null before it is there.
    testbed::chromium::Page* Page() const { return page_.get(); }

  private:
    void OnDocumentMessage(const nlohmann::json& message,
                           const std::function<void(const std::string& text)>& reply);
    void OnBrowser(const std::shared_ptr<testbed::chromium::Browser>& browser);
    void OnPageCreated(std::unique_ptr<testbed::chromium::Page> page);
    void Lose();

    /// Runs the body of what Chromium calls: in it the owner may let go of this object. Out of memory, it is dropped.
    template <typename Body>
    void During(Body&& body) {
        const auto self = shared_from_this();
        WithoutExceptions([&] {
            body();
            return S_OK;
        });
    }

    void Start(const std::string& url);
    void ReadCookies(const testbed::chromium::Response& response);

    bool OnNavigationStarting(const testbed::chromium::NavigationStart& start) override;
    void OnRequest(testbed::chromium::Request& request) override;
    void OnResponse(const testbed::chromium::Response& response) override;
    testbed::chromium::CertificateDecision
    OnCertificateError(const testbed::chromium::CertificateProblem& problem) override;
    testbed::chromium::AuthenticationAnswer
    OnAuthenticationRequested(const testbed::chromium::AuthenticationChallenge& challenge) override;
    void OnNavigationCompleted(const testbed::chromium::NavigationOutcome& outcome) override;
    void OnBridgeMessage(const std::string& message,
                         std::function<void(const std::string& text)> reply) override;
    void OnCrashed(testbed::chromium::Crash crash) override;

    EnginePageOwner* owner_; // null once closed
    bool opening_ = false;
    std::optional<std::string> wanted_; // until there is a page
    int started_ = 0;                   // navigations of the owner's that the page has not announced yet
    CookieMirror cookies_;
    std::shared_ptr<ProfileFolder> folder_;
    std::shared_ptr<testbed::chromium::Browser>
        browser_; // while the page is made; afterwards the page keeps it
    std::unique_ptr<testbed::chromium::Page> page_;
};

} // namespace legacy_control
