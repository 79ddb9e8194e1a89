// The navigations of a page: who asked for them, what the client is asked, and how they end.
#include <string_view>
#include <utility>

#include "testbed/chromium/page_session.h"
#include "testbed/chromium/request_text.h"

namespace testbed::chromium {
namespace {

/// In the place of Chromium's name for a navigation that never came to have one.
constexpr const char* kNoLoader = "without a request";

/// Of these Chromium asks for leave to send a request; other navigations it only announces.
bool HasRequest(std::string_view url) {
    return IsWeb(url) || url.starts_with("file:");
}

} // namespace

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

void PageSession::OnResponseReceived(const Json& params) {
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

} // namespace testbed::chromium
