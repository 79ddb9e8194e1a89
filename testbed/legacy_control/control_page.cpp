// What the page does, told as events. Each of them may be the last: the host may close the control in it.
#include "control.h"

#include <algorithm>
#include <array>
#include <utility>

#include <urlmon.h>

#include "testbed/chromium/text.h"

namespace legacy_control {
namespace {

using testbed::chromium::NavigationError;
using testbed::chromium::NavigationOutcome;

constexpr int kFirstFailedStatus = 400;
constexpr LONG kMostProgress = 10000;

struct FailureCode {
    NavigationError error;
    HRESULT code;
};

constexpr std::array kFailureCodes = {
    FailureCode{NavigationError::CannotConnect, INET_E_RESOURCE_NOT_FOUND},
    FailureCode{NavigationError::HostNameNotResolved, INET_E_RESOURCE_NOT_FOUND},
    FailureCode{NavigationError::Disconnected, INET_E_RESOURCE_NOT_FOUND},
    FailureCode{NavigationError::Timeout, INET_E_CONNECTION_TIMEOUT},
    FailureCode{NavigationError::RedirectFailed, INET_E_REDIRECT_FAILED},
    FailureCode{NavigationError::CertificateCommonNameIncorrect, INET_E_INVALID_CERTIFICATE},
    FailureCode{NavigationError::CertificateExpired, INET_E_INVALID_CERTIFICATE},
    FailureCode{NavigationError::CertificateInvalid, INET_E_INVALID_CERTIFICATE},
    FailureCode{NavigationError::CertificateRevoked, INET_E_INVALID_CERTIFICATE},
};

LONG CodeOf(NavigationError error) {
    const auto found = std::ranges::find(kFailureCodes, error, &FailureCode::error);
    return found == kFailureCodes.end() ? INET_E_DOWNLOAD_FAILURE : found->code;
}

/// The server has answered, and what it said is shown.
bool HasContent(const NavigationOutcome& outcome) {
    return outcome.success || outcome.error == NavigationError::HttpStatus ||
           outcome.error == NavigationError::ValidAuthenticationRequired;
}

} // namespace

void Control::OnPage(testbed::chromium::Page& page) {
    const Self self = this;
    WithoutExceptions([&] {
        if (window_ != nullptr) {
            window_->Show(page);
        }
        return S_OK;
    });
}

void Control::OnPageLost() {
    const Self self = this;
    if (window_ != nullptr) {
        window_->DropView();
    }
    hasDocument_ = false;
    if (navigation_.running) {
        OnFailed(INET_E_DOWNLOAD_FAILURE);
    }
}

void Control::BeginLoading() {
    state_ = READYSTATE_LOADING;
    events_.DownloadBegin();
    events_.CommandStateChange();
    events_.StatusTextChange("Opening " + navigation_.url);
    events_.ProgressChange(0, kMostProgress);
}

bool Control::OnStarting(const testbed::chromium::NavigationStart& start, bool wanted) {
    const Self self = this;
    if (start.redirected || wanted) {
        navigation_.running = true;
        navigation_.id = start.id;
        navigation_.url = start.url;
        return true;
    }
    if (!events_.BeforeNavigate(start.url, 0) || closed_) {
        return false;
    }
    navigation_ = {.running = true, .id = start.id, .url = start.url};
    BeginLoading();
    return !closed_;
}

void Control::OnAnswer(const testbed::chromium::Response& response) {
    const Self self = this;
    const bool refused = navigation_.running && navigation_.id != 0 && response.url == navigation_.url &&
                         response.status >= kFirstFailedStatus;
    if (refused && !std::exchange(navigation_.refused, true) &&
        !events_.NavigateError(navigation_.url, response.status) && !closed_) {
        page_->Stop();
    }
}

void Control::OnCompleted(const NavigationOutcome& outcome) {
    const Self self = this;
    if (!navigation_.running || outcome.id != navigation_.id) {
        return;
    }
    if (HasContent(outcome)) {
        OnLoaded();
    } else if (outcome.error == NavigationError::Aborted) {
        OnAborted();
    } else {
        OnFailed(CodeOf(outcome.error));
    }
}

void Control::OnNewDocument(const std::string& url) {
    // Nor is the page that tells of a failure a document.
    if (!navigation_.running || navigation_.id == 0 || navigation_.completed ||
        url.starts_with("chrome-error:")) {
        return;
    }
    navigation_.completed = true;
    hasDocument_ = true;
    title_.clear();
    state_ = READYSTATE_INTERACTIVE;
    events_.ProgressChange(kMostProgress, kMostProgress);
    events_.DownloadComplete();
    events_.NavigateComplete(navigation_.url);
}

void Control::OnLoaded() {
    OnNewDocument(navigation_.url);
    navigation_.running = false;
    state_ = READYSTATE_COMPLETE;
    if (title_.empty()) {
        OnTitle(navigation_.url);
    }
    events_.StatusTextChange("Done");
    events_.DocumentComplete(navigation_.url);
}

void Control::OnFailed(LONG status) {
    OnAborted();
    events_.NavigateError(navigation_.url, status);
}

void Control::OnAborted() {
    navigation_.running = false;
    state_ = hasDocument_ ? READYSTATE_COMPLETE : READYSTATE_UNINITIALIZED;
    events_.DownloadComplete();
}

} // namespace legacy_control
