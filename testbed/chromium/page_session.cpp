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
constexpr const char* kBinding = "__testbedSend";

std::string LiteralOf(const std::string& text) {
    return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

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
    {"Runtime.executionContextCreated", &PageSession::OnContextCreated},
    {"Runtime.executionContextDestroyed", &PageSession::OnContextDestroyed},
    {"Runtime.executionContextsCleared", &PageSession::OnContextsCleared},
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
    ++cookieChanges_;
    Send(method, std::move(params), [this, reply = std::move(reply)](const Json* result) {
        if (--cookieChanges_ == 0) {
            for (const auto& read : std::exchange(cookieReads_, {})) {
                read();
            }
        }
        if (reply) {
            reply(result);
        }
    });
}

void PageSession::ReadCookies(const std::string& method, const Json& params, const Connection::Reply& reply) {
    if (cookieChanges_ == 0) {
        Send(method, params, reply);
    } else {
        cookieReads_.emplace_back([this, method, params, reply] { Send(method, params, reply); });
    }
}

void PageSession::Close() {
    if (std::exchange(closed_, true)) {
        return;
    }
    client_ = nullptr;
    pictures_ = nullptr;
    const auto dropped = std::exchange(cookieReads_, {});
    connection_->Detach(address_.session);
    connection_->Send("Target.closeTarget", {{"targetId", address_.target}}, {});
    if (!address_.context.empty()) {
        connection_->Send("Target.disposeBrowserContext", {{"browserContextId", address_.context}}, {});
    }
}

void PageSession::OnEvent(const std::string& method, const Json& params) {
    const auto found = kHandlers.find(method);
    if (found != kHandlers.end() && !closed_) {
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
    if (closed_ || !connection_->Alive()) {
        return;
    }
    wanted_.push_back({url, extraHeaders});
    if (settings_ == 0 || navigations_.Underway()) {
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
            QueueFailure(wanted.url, "net::ERR_ABORTED");
        }
    }
    std::erase_if(wanted_, [](const Wanted& wanted) { return !wanted.sent; });
    Send("Page.stopLoading");
}

/// Comes when the headers of the answer are there, so the navigation, if there was one, is known by then.
void PageSession::OnNavigateReply(std::list<Wanted>::iterator wanted, const Json* result) {
    const Wanted answered = std::move(*wanted);
    wanted_.erase(wanted);
    if (!answered.started && (result == nullptr || result->contains("errorText"))) {
        QueueFailure(answered.url, result == nullptr ? "" : result->at("errorText").get<std::string>());
    }
}

/// By way of the queue, since the client may be busy.
void PageSession::QueueFailure(const std::string& url, const std::string& errorText) {
    connection_->Queue(address_.session, kNavigateFailedEvent, {{"url", url}, {"errorText", errorText}});
}

void PageSession::OnNavigateFailed(const Json& params) {
    const std::string loader = "without a request";
    if (Ask(loader, params.at("url").get<std::string>(), false) && !closed_) {
        Report(
            navigations_.Fail(loader, ErrorFromText(params.at("errorText").get_ref<const std::string&>())));
    } else if (!closed_) {
        Report(navigations_.Fail(loader, NavigationError::Aborted));
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

void PageSession::OnRequestPaused(const Json& params) {
    Request request = RequestFrom(params);
    request.mainDocument = request.kind == ResourceKind::Document && IsMainFrame(params);
    if (request.mainDocument) {
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
    Send("Fetch.continueRequest", ContinueParameters(params, request.headers));
}

void PageSession::OnStartedNavigating(const Json& params) {
    const auto url = params.at("url").get<std::string>();
    if (!IsMainFrame(params) || params.at("navigationType") == "sameDocument") {
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
    // The page is not to find the way out by itself.
    const std::string name = kBinding;
    const std::string source =
        "(() => { const send = globalThis." + name + "; delete globalThis." + name + "; const receive = (" +
        shim + "\n)((text) => send(String(text)));" +
        "Object.defineProperty(globalThis, '__testbedReceive', { value: receive }); })()";
    SendSetting("Runtime.addBinding", {{"name", name}});
    SendSetting("Page.addScriptToEvaluateOnNewDocument", {{"source", source}});
}

void PageSession::OnContextCreated(const Json& params) {
    const Json& context = params.at("context");
    contexts_[context.at("id").get<int>()] = context.at("uniqueId").get<std::string>();
}

void PageSession::OnContextDestroyed(const Json& params) {
    contexts_.erase(params.at("executionContextId").get<int>());
}

void PageSession::OnContextsCleared(const Json& /*params*/) {
    contexts_.clear();
}

void PageSession::OnBindingCalled(const Json& params) {
    if (client_ == nullptr || params.at("name") != kBinding) {
        return;
    }
    const auto context = contexts_.find(params.at("executionContextId").get<int>());
    const std::string name = context == contexts_.end() ? std::string() : context->second;
    client_->OnBridgeMessage(
        params.at("payload").get<std::string>(), [weak = weak_from_this(), name](const auto& text) {
            if (const auto self = weak.lock(); self != nullptr && !name.empty()) {
                self->Send("Runtime.evaluate", {{"expression", "__testbedReceive(" + LiteralOf(text) + ")"},
                                                {"uniqueContextId", name}});
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
             if (sendsPictures_) {
                 SendPictures(false);
                 SendPictures(true);
             }
         });
}

void PageSession::SendPictures(bool enabled) {
    sendsPictures_ = enabled;
    if (enabled) {
        Send("Page.startScreencast", {{"format", "png"}, {"everyNthFrame", 1}});
    } else {
        Send("Page.stopScreencast");
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
    connection_->FailReplies(address_.session);
    EndCrashed(Crash::Renderer);
}

void PageSession::OnRendererReplaced(const Json& /*params*/) {
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
