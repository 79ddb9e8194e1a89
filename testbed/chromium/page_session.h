// A page as Chromium reports it: turns the events of its session into calls of the client, and holds what has to be
// remembered between them.
#pragma once

#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <windows.h>

#include "testbed/chromium/connection.h"
#include "testbed/chromium/cookie_order.h"
#include "testbed/chromium/navigations.h"
#include "testbed/chromium/page_client.h"
#include "testbed/chromium/responses.h"
#include "testbed/chromium/script_bridge.h"
#include "testbed/chromium/script_dialog.h"
#include "testbed/chromium/trust.h"
#include "testbed/chromium/workers.h"

namespace testbed::chromium {

/// Gets the pictures of a page that is shown.
class PictureSink {
  public:
    /// @param png the picture in base64.
    virtual void OnPicture(const std::string& png) = 0;
    /// The page has a new renderer, which knows nothing of the view.
    virtual void OnRendererReplaced() = 0;

  protected:
    PictureSink() = default;
    ~PictureSink() = default;
    PictureSink(const PictureSink&) = default;
    PictureSink& operator=(const PictureSink&) = default;
};

class PageSession final : public EventSink, public std::enable_shared_from_this<PageSession> {
  public:
    struct Address {
        std::string session;
        std::string target; ///< also the name of the main frame
        std::string context;
    };

    // Events of our own, which come back by way of the queue.
    static constexpr const char* kNavigateFailedEvent = "Page.navigateFailed";
    /// With the `number` of an answer.
    static constexpr const char* kAnswerMissingEvent = "Page.answerMissing";

    /// @param certificates those that have been allowed so far, on any page of the browser.
    PageSession(std::shared_ptr<Connection> connection, Address address,
                std::shared_ptr<AllowedCertificates> certificates);

    /// Has everything reported from now on. `reply` gets the last answer.
    void Prepare(const std::string& userAgent, const Connection::Reply& reply);
    void SetClient(PageClient& client) { client_ = &client; }

    /// A command whose reply is dropped once the page is closed.
    void Send(const std::string& method, Json params = Json::object(), Connection::Reply reply = {});

    /// A command that goes to the renderer and has to be done before a navigation starts, which would overtake it. But while
    /// another navigation is underway, and after a crash, the renderer is not asked anything.
    void SendSetting(const std::string& method, Json params, Connection::Reply reply = {});

    /// What is read shows what was changed before.
    void ChangeCookies(const std::string& method, Json params, Connection::Reply reply = {});
    void ReadCookies(const std::string& method, const Json& params, const Connection::Reply& reply);

    void Navigate(const std::string& url, const Headers& extraHeaders);
    void Stop();
    void InstallBridge(const std::string& shim);
    void Close();
    bool Closed() const { return closed_; }
    const std::string& Url() const { return url_; }
    const std::string& Session() const { return address_.session; }

    void SetRequestInterception(bool enabled) { interception_ = enabled; }
    void SetCertificateReports(bool enabled);
    void SetScriptDialogsEnabled(bool enabled) { dialogs_ = enabled; }
    void SetDialogOwner(HWND owner) { dialogOwner_ = owner; }
    /// Null for none.
    void SetPictureSink(PictureSink* sink) { pictures_ = sink; }
    /// @param width and the other one: in pixels, at least 1.
    void SetSize(LONG width, LONG height);
    void SendPictures(bool enabled);
    /// Brings the picture of now; nothing while none are sent.
    void RestartPictures();

    void OnEvent(const std::string& method, const Json& params) override;
    void OnConnectionLost() override;

  private:
    using Handler = void (PageSession::*)(const Json& params);
    static const std::map<std::string, Handler, std::less<>> kHandlers;

    struct Event {
        std::string method;
        Json params;
    };

    /// A call of `Navigate` that is not answered yet.
    struct Wanted {
        std::string url;
        Headers extraHeaders;
        bool sent = false;
        bool started = false; // its navigation has shown up
    };

    void Handle(const std::string& method, const Json& params);
    void ReportResponses(const std::vector<Response>& responses);
    void AskForLateAnswer();
    bool IsMainFrame(const Json& params) const;
    bool Ask(const std::string& loader, const std::string& url, bool redirected);
    void Report(const std::vector<NavigationOutcome>& outcomes);
    Headers TakeExtraHeaders();
    void SendWanted();
    void QueueFailure(const std::string& loader, const std::string& url, NavigationError error);
    void EndCrashed(Crash crash);

    void OnNavigateReply(std::list<Wanted>::iterator wanted, const Json* result);
    void OnNavigateFailed(const Json& params);
    void OnRequestPaused(const Json& params);
    void AnswerPaused(const Json& params);
    void OnStartedNavigating(const Json& params);
    void OnAnswerMissing(const Json& params);
    void OnCertificateError(const Json& params);
    /// Asks the client, unless it has allowed that certificate before.
    bool Allow(const CertificateProblem& problem);
    void OnAuthenticationRequired(const Json& params);
    void OnWorkerAttached(const Json& params);
    void OnWorkerDetached(const Json& params);
    void OnResponseReceived(const Json& params);
    void OnLoadingFailed(const Json& params);
    void OnFrameNavigated(const Json& params);
    void OnNavigatedWithinDocument(const Json& params);
    void OnLifecycle(const Json& params);
    void OnStoppedLoading(const Json& params);
    void OnBindingCalled(const Json& params);
    void OnDialog(const Json& params);
    void OnPicture(const Json& params);
    void OnRendererCrashed(const Json& params);
    void OnRendererReplaced(const Json& params);

    std::shared_ptr<Connection> connection_;
    Address address_;
    PageClient* client_ = nullptr; // null before the page is handed out, and once it is closed
    PictureSink* pictures_ = nullptr;
    bool closed_ = false;
    bool sendsPictures_ = false;
    int pictureOrders_ = 0; // only the last one is repeated
    bool interception_ = false;
    bool certificateReports_ = false;
    bool dialogs_ = true;
    HWND dialogOwner_ = nullptr;
    ScriptDialog dialog_;
    std::string url_ = "about:blank";
    Navigations navigations_;
    std::list<Wanted> wanted_;
    int settings_ = 0;             // that are not done yet
    bool withoutRenderer_ = false; // since a crash; settings wait for the next one
    CookieOrder cookies_;
    ScriptBridge bridge_;
    Responses responses_;
    std::deque<Event> waiting_; // for a navigation's answer to be complete
    std::uint64_t lastLateAnswer_ = 0;
    std::shared_ptr<AllowedCertificates> certificates_;
    Workers workers_;
};

} // namespace testbed::chromium
