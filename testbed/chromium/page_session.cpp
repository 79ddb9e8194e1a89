// Each call of the client may close the page, so after one nothing but `closed_` is relied on; whoever calls these functions
// keeps the object itself.
#include "testbed/chromium/page_session.h"

#include <array>
#include <utility>

namespace testbed::chromium {

const std::map<std::string, PageSession::Handler, std::less<>> PageSession::kHandlers = {
    {kAnswerMissingEvent, &PageSession::OnAnswerMissing},
    {kNavigateFailedEvent, &PageSession::OnNavigateFailed},
    {kPictureEvent, &PageSession::OnPicture},
    {"Fetch.authRequired", &PageSession::OnAuthenticationRequired},
    {"Fetch.requestPaused", &PageSession::OnRequestPaused},
    {kCrashedEvent, &PageSession::OnRendererCrashed},
    {"Inspector.targetReloadedAfterCrash", &PageSession::OnRendererReplaced},
    {"Network.loadingFailed", &PageSession::OnLoadingFailed},
    {"Network.responseReceived", &PageSession::OnResponseReceived},
    {"Page.frameNavigated", &PageSession::OnFrameNavigated},
    {"Page.frameStartedNavigating", &PageSession::OnStartedNavigating},
    {"Page.frameStoppedLoading", &PageSession::OnStoppedLoading},
    {"Page.javascriptDialogOpening", &PageSession::OnDialog},
    {"Page.lifecycleEvent", &PageSession::OnLifecycle},
    {"Page.navigatedWithinDocument", &PageSession::OnNavigatedWithinDocument},
    {"Runtime.bindingCalled", &PageSession::OnBindingCalled},
    {"Security.certificateError", &PageSession::OnCertificateError},
    {"Target.attachedToTarget", &PageSession::OnWorkerAttached},
    {"Target.detachedFromTarget", &PageSession::OnWorkerDetached},
};

PageSession::PageSession(std::shared_ptr<Connection> connection, Address address,
                         std::shared_ptr<AllowedCertificates> certificates)
    : connection_(std::move(connection)),
      address_(std::move(address)),
      responses_(address_.target),
      certificates_(std::move(certificates)),
      workers_(connection_) {}

void PageSession::Prepare(const std::string& userAgent, const Connection::Reply& reply) {
    connection_->Attach(address_.session, weak_from_this());
    const std::array<std::pair<const char*, Json>, 9> commands = {{
        {"Page.enable", Json::object()},
        {"Runtime.enable", Json::object()},
        {"Network.enable", Json::object()},
        {"Inspector.enable", Json::object()},
        {"Page.setLifecycleEventsEnabled", {{"enabled", true}}},
        // A service worker would answer in the place of the network, and no request would be seen.
        {"Network.setBypassServiceWorker", {{"bypass", true}}},
        {"Emulation.setUserAgentOverride", {{"userAgent", userAgent}}},
        {"Fetch.enable", {{"patterns", Json::array({{{"urlPattern", "*"}}})}, {"handleAuthRequests", true}}},
        {"Target.setAutoAttach", Workers::Attachment()},
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
    dialog_.Close();
    cookies_.Clear();
    waiting_.clear();
    connection_->Detach(address_.session);
    connection_->Send("Target.closeTarget", {{"targetId", address_.target}}, {});
    if (!address_.context.empty()) {
        connection_->Send("Target.disposeBrowserContext", {{"browserContextId", address_.context}}, {});
    }
}

/// A navigation's answer comes before what came of it, also if Chromium is late with the second half of the answer.
void PageSession::OnEvent(const std::string& method, const Json& params) {
    if (closed_) {
        return;
    }
    if (method == kPictureEvent) { // comes also while the client is being called
        Handle(method, params);
        return;
    }
    if (Responses::IsOfTheWire(method) || method == kAnswerMissingEvent) {
        Handle(method, params);
    } else {
        waiting_.push_back({method, params});
    }
    while (!waiting_.empty() && !responses_.Late()) {
        const Event event = std::move(waiting_.front());
        waiting_.pop_front();
        Handle(event.method, event.params);
    }
    AskForLateAnswer();
}

void PageSession::Handle(const std::string& method, const Json& params) {
    if (closed_ || bridge_.OnEvent(method, params)) {
        return;
    }
    ReportResponses(responses_.OnEvent(method, params));
    const auto found = kHandlers.find(method);
    if (!closed_ && found != kHandlers.end()) {
        (this->*found->second)(params);
    }
}

void PageSession::OnConnectionLost() {
    waiting_.clear();
    EndCrashed(Crash::Browser);
}

bool PageSession::IsMainFrame(const Json& params) const {
    return params.value("frameId", "") == address_.target;
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
    if (!dialogs_) {
        Send("Page.handleJavaScriptDialog", ScriptDialog::Dismissal(params));
        return;
    }
    // A page answers nothing while its dialog is open, so once this is answered, or has failed, there is none any more.
    Send("Runtime.evaluate", {{"expression", "0"}}, [this](const Json* /*result*/) { dialog_.Close(); });
    Send("Page.handleJavaScriptDialog", dialog_.Show(params, dialogOwner_));
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
