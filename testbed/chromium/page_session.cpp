// Each call of the client may close the page, so after one nothing but `closed_` is relied on; whoever calls these functions
// keeps the object itself.
#include "testbed/chromium/page_session.h"

#include <array>
#include <utility>

#include "testbed/chromium/request_text.h"
#include "testbed/chromium/script_dialog.h"

namespace testbed::chromium {
namespace {

constexpr const char* kNavigateFailedEvent = "Page.navigateFailed"; // our own
/// In the place of Chromium's name for a navigation that never came to have one.
constexpr const char* kNoLoader = "without a request";

/// Of these Chromium asks for leave to send a request; other navigations it only announces.
bool HasRequest(std::string_view url) {
    return url.starts_with("http:") || url.starts_with("https:") || url.starts_with("file:");
}

} // namespace

const std::map<std::string, PageSession::Handler, std::less<>> PageSession::kHandlers = {
    {kNavigateFailedEvent, &PageSession::OnNavigateFailed},
    {kPictureEvent, &PageSession::OnPicture},
    {"Fetch.requestPaused", &PageSession::OnRequestPaused},
    {"Inspector.targetCrashed", &PageSession::OnRendererCrashed},
    {"Inspector.targetReloadedAfterCrash", &PageSession::OnRendererReplaced},
    {"Network.loadingFailed", &PageSession::OnLoadingFailed},
    {"Network.responseReceived", &PageSession::OnResponse},
    {"Page.frameNavigated", &PageSession::OnFrameNavigated},
    {"Page.frameStartedNavigating", &PageSession::OnStartedNavigating},
    {"Page.frameStoppedLoading", &PageSession::OnStoppedLoading},
    {"Page.javascriptDialogOpening", &PageSession::OnDialog},
    {"Page.lifecycleEvent", &PageSession::OnLifecycle},
    {"Page.navigatedWithinDocument", &PageSession::OnNavigatedWithinDocument},
    {"Runtime.bindingCalled", &PageSession::OnBindingCalled},
};

void PageSession::Prepare(const std::string& userAgent, const Connection::Reply& reply) {
    connection_->Attach(address_.session, weak_from_this());
    const std::array<std::pair<const char*, Json>, 8> commands = {{
        {"Page.enable", Json::object()},
        {"Runtime.enable", Json::object()},
        {"Network.enable", Json::object()},
        {"Inspector.enable", Json::object()},
        {"Page.setLifecycleEventsEnabled", {{"enabled", true}}},
        // A service worker would answer in the place of the network, and no request would be seen.
        {"Network.setBypassServiceWorker", {{"bypass", true}}},
        {"Emulation.setUserAgentOverride", {{"userAgent", userAgent}}},
        {"Fetch.enable", {{"patterns", Json::array({{{"urlPattern", "*"}}})}}},
    }};
    // Some are done by the renderer and some are not, so the last one may be answered first.
    const auto left = std::make_shared<std::size_t>(commands.size());
    for (const auto& [method, params] : commands) {
        Send(method, params, [left, reply](const Json* result) {
            if (*left != 0 && (--*left == 0 || result == nullptr)) {
                *left = 0;
                reply(result);
            }
        });
    }
}

void PageSession::Send(const std::string& method, Json params, Connection::Reply reply) {
    if (closed_) {
        return;
    }
    if (!reply) {
        connection_->Send(method, std::move(params), address_.session);
        return;
    }
    connection_->Send(method, std::move(params), address_.session,
                      [weak = weak_from_this(), reply = std::move(reply)](const Json* result) {
                          if (const auto self = weak.lock(); self != nullptr && !self->closed_) {
                              reply(result);
                          }
                      });
}

void PageSession::SendSetting(const std::string& method, Json params, Connection::Reply reply) {
    ++settings_;
    Send(method, std::move(params), [this, reply = std::move(reply)](const Json* result) {
        if (--settings_ == 0) {
            SendWanted();
        }
        if (reply) {
            reply(result);
        }
    });
}

void PageSession::ChangeCookies(const std::string& method, Json params, Connection::Reply reply) {
    cookies_.BeginChange();
    Send(method, std::move(params), [this, reply = std::move(reply)](const Json* result) {
        cookies_.EndChange();
        if (reply) {
            reply(result);
        }
    });
}

void PageSession::ReadCookies(const std::string& method, const Json& params, const Connection::Reply& reply) {
    cookies_.Read([this, method, params, reply] { Send(method, params, reply); });
}

void PageSession::Close() {
    if (std::exchange(closed_, true)) {
        return;
    }
    client_ = nullptr;
    pictures_ = nullptr;
    cookies_.Clear();
    connection_->Detach(address_.session);
    connection_->Send("Target.closeTarget", {{"targetId", address_.target}}, {});
    if (!address_.context.empty()) {
        connection_->Send("Target.disposeBrowserContext", {{"browserContextId", address_.context}}, {});
    }
}

void PageSession::OnEvent(const std::string& method, const Json& params) {
    const auto found = kHandlers.find(method);
    if (!closed_ && !bridge_.OnEvent(method, params) && found != kHandlers.end()) {
        (this->*found->second)(params);
    }
}

void PageSession::OnConnectionLost() {
    EndCrashed(Crash::Browser);
}

bool PageSession::IsMainFrame(const Json& params) const {
    return params.value("frameId", "") == address_.target;
}

// --- navigation

void PageSession::Navigate(const std::string& url, const Headers& extraHeaders) {
    if (closed_) {
        return;
    }
    wanted_.push_back({url, extraHeaders});
    if (settings_ == 0 || navigations_.Underway() || withoutRenderer_) {
        SendWanted();
    }
}

void PageSession::SendWanted() {
    for (auto wanted = wanted_.begin(); wanted != wanted_.end(); ++wanted) {
        if (!std::exchange(wanted->sent, true)) {
            Send("Page.navigate", {{"url", wanted->url}},
                 [this, wanted](const Json* result) { OnNavigateReply(wanted, result); });
        }
    }
}

void PageSession::Stop() {
    for (const Wanted& wanted : wanted_) {
        if (!wanted.sent) {
            QueueFailure(kNoLoader, wanted.url, NavigationError::Aborted);
        }
    }
    std::erase_if(wanted_, [](const Wanted& wanted) { return !wanted.sent; });
    Send("Page.stopLoading");
}

/// Comes when the headers of the answer are there, so the navigation, if there was one, is known by then. A failure usually
/// has been reported by an event of its own before; to say it again does no harm.
void PageSession::OnNavigateReply(std::list<Wanted>::iterator wanted, const Json* result) {
    const Wanted answered = std::move(*wanted);
    wanted_.erase(wanted);
    if (result != nullptr && result->contains("errorText")) {
        QueueFailure(answered.started ? result->value("loaderId", "") : kNoLoader, answered.url,
                     ErrorFromText(result->at("errorText").get_ref<const std::string&>()));
    } else if (result == nullptr && !answered.started) {
        QueueFailure(kNoLoader, answered.url,
                     connection_->Alive() ? NavigationError::Unknown : NavigationError::RendererCrashed);
    }
}

/// By way of the queue, since the client may be busy.
void PageSession::QueueFailure(const std::string& loader, const std::string& url, NavigationError error) {
    connection_->Queue(address_.session, kNavigateFailedEvent,
                       {{"loader", loader}, {"url", url}, {"error", error}});
}

void PageSession::OnNavigateFailed(const Json& params) {
    const auto loader = params.at("loader").get<std::string>();
    auto error = params.at("error").get<NavigationError>();
    if (loader == kNoLoader && !Ask(loader, params.at("url").get<std::string>(), false)) {
        error = NavigationError::Aborted;
    }
    if (!closed_) {
        Report(navigations_.Fail(loader, error));
    }
}

/// @return false if the client has cancelled, or closed the page.
bool PageSession::Ask(const std::string& loader, const std::string& url, bool redirected) {
    return client_ != nullptr && client_->OnNavigationStarting(navigations_.Start(loader, url, redirected)) &&
           !closed_;
}

void PageSession::Report(const std::vector<NavigationOutcome>& outcomes) {
    for (const NavigationOutcome& outcome : outcomes) {
        if (client_ != nullptr) {
            client_->OnNavigationCompleted(outcome);
        }
    }
}

/// Those of the oldest `Navigate` whose navigation has not shown up; there are no names by which to tell them apart.
Headers PageSession::TakeExtraHeaders() {
    for (Wanted& wanted : wanted_) {
        if (wanted.sent && !wanted.started) {
            wanted.started = true;
            return std::exchange(wanted.extraHeaders, {});
        }
    }
    return {};
}

/// Whatever becomes of it here, the request does not stay paused.
void PageSession::OnRequestPaused(const Json& params) {
    try {
        AnswerPaused(params);
    } catch (const Json::exception&) {
        Send("Fetch.continueRequest", {{"requestId", params.at("requestId")}});
        throw;
    }
}

void PageSession::AnswerPaused(const Json& params) {
    Request request = RequestFrom(params);
    request.mainDocument = request.kind == ResourceKind::Document && IsMainFrame(params);
    if (request.mainDocument && client_ != nullptr) {
        if (!request.redirected) {
            Replace(request.headers, TakeExtraHeaders());
        }
        if (!Ask(params.at("networkId").get<std::string>(), request.url, request.redirected)) {
            Send("Fetch.failRequest", {{"requestId", params.at("requestId")}, {"errorReason", "Aborted"}});
            return;
        }
    }
    const bool web = request.url.starts_with("http:") || request.url.starts_with("https:");
    if (interception_ && web && client_ != nullptr) {
        client_->OnRequest(request);
    }
    Send("Fetch.continueRequest", ContinueParameters(params, request.headers),
         [this, id = params.at("requestId")](const Json* result) {
             // Headers that cannot be sent are refused, and the request is kept.
             if (result == nullptr) {
                 Send("Fetch.continueRequest", {{"requestId", id}});
             }
         });
}

void PageSession::OnStartedNavigating(const Json& params) {
    const auto url = params.at("url").get<std::string>();
    if (!IsMainFrame(params) || params.at("navigationType") == "sameDocument" || client_ == nullptr) {
        return;
    }
    if (HasRequest(url)) {
        SendWanted();
        return;
    }
    const auto loader = params.at("loaderId").get<std::string>();
    TakeExtraHeaders();
    if (!Ask(loader, url, false) && !closed_) {
        Send("Page.stopLoading");
        Report(navigations_.Fail(loader, NavigationError::Aborted));
    }
}

void PageSession::OnResponse(const Json& params) {
    if (params.at("type") == "Document" && IsMainFrame(params)) {
        navigations_.HasStatus(params.at("requestId").get<std::string>(),
                               params.at("response").at("status").get<int>());
    }
}

void PageSession::OnLoadingFailed(const Json& params) {
    Report(navigations_.Fail(params.at("requestId").get<std::string>(),
                             ErrorFromText(params.at("errorText").get_ref<const std::string&>())));
}

void PageSession::OnFrameNavigated(const Json& params) {
    const Json& frame = params.at("frame");
    if (frame.at("id") != address_.target) {
        return;
    }
    url_ = frame.value("unreachableUrl", frame.at("url").get<std::string>()) + frame.value("urlFragment", "");
    Report(navigations_.Commit(frame.at("loaderId").get<std::string>()));
}

void PageSession::OnNavigatedWithinDocument(const Json& params) {
    if (IsMainFrame(params)) {
        url_ = params.at("url").get<std::string>();
    }
}

void PageSession::OnLifecycle(const Json& params) {
    if (params.at("name") == "load") {
        Report(navigations_.Load(params.at("loaderId").get<std::string>()));
    }
}

void PageSession::OnStoppedLoading(const Json& params) {
    if (IsMainFrame(params)) {
        Report(navigations_.Stop());
    }
}

// --- scripts

void PageSession::InstallBridge(const std::string& shim) {
    SendSetting("Runtime.addBinding", {{"name", ScriptBridge::kBinding}});
    SendSetting("Page.addScriptToEvaluateOnNewDocument", {{"source", ScriptBridge::DocumentScript(shim)}});
}

void PageSession::OnBindingCalled(const Json& params) {
    const auto message = bridge_.MessageFrom(params);
    if (client_ == nullptr || !message.has_value()) {
        return;
    }
    client_->OnBridgeMessage(message->text,
                             [weak = weak_from_this(), context = message->context](const auto& text) {
                                 if (const auto self = weak.lock(); self != nullptr && !context.empty()) {
                                     self->Send("Runtime.evaluate", ScriptBridge::Delivery(context, text));
                                 }
                             });
}

void PageSession::OnDialog(const Json& params) {
    Send("Page.handleJavaScriptDialog",
         dialogs_ ? ShowScriptDialog(params, dialogOwner_) : DismissScriptDialog(params));
}

// --- view and crashes

void PageSession::SetSize(LONG width, LONG height) {
    Send("Emulation.setDeviceMetricsOverride",
         {{"width", width}, {"height", height}, {"deviceScaleFactor", 1}, {"mobile", false}},
         [this](const Json* /*result*/) {
             // A new size does not always bring a new picture, but a new start does.
             RestartPictures();
         });
}

void PageSession::SendPictures(bool enabled) {
    sendsPictures_ = enabled;
    const int order = ++pictureOrders_;
    if (!enabled) {
        Send("Page.stopScreencast");
        return;
    }
    Send("Page.startScreencast", {{"format", "png"}, {"everyNthFrame", 1}},
         [this, order](const Json* result) {
             // Refused while the page changes over to its next document.
             if (result == nullptr && order == pictureOrders_ && connection_->Alive() && !withoutRenderer_) {
                 SendPictures(true);
             }
         });
}

void PageSession::RestartPictures() {
    if (sendsPictures_) {
        SendPictures(false);
        SendPictures(true);
    }
}

void PageSession::OnPicture(const Json& params) {
    // Before it is painted: Chromium draws the next one meanwhile.
    Send("Page.screencastFrameAck", {{"sessionId", params.at("sessionId")}});
    if (pictures_ != nullptr) {
        pictures_->OnPicture(params.at("data").get_ref<const std::string&>());
    }
}

void PageSession::OnRendererCrashed(const Json& /*params*/) {
    withoutRenderer_ = true;
    connection_->FailReplies(address_.session);
    EndCrashed(Crash::Renderer);
}

void PageSession::OnRendererReplaced(const Json& /*params*/) {
    withoutRenderer_ = false;
    if (pictures_ != nullptr) {
        pictures_->OnRendererReplaced();
    }
}

void PageSession::EndCrashed(Crash crash) {
    Report(navigations_.FailAll(NavigationError::RendererCrashed));
    if (client_ != nullptr) {
        client_->OnCrashed(crash);
    }
}

} // namespace testbed::chromium
