// The requests of a page: what the client may change in them, what it hears of their answers, and what it is asked before
// there is one.
#include <utility>

#include "testbed/chromium/header_text.h"
#include "testbed/chromium/page_session.h"
#include "testbed/chromium/request_text.h"

namespace testbed::chromium {

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
    if (interception_ && IsWeb(request.url) && client_ != nullptr) {
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

// --- answers

void PageSession::ReportResponses(const std::vector<Response>& responses) {
    for (const Response& response : responses) {
        if (client_ != nullptr) {
            client_->OnResponse(response);
        }
    }
}

/// By a question: what Chromium has to say of that answer it has said before it comes to the question.
void PageSession::AskForLateAnswer() {
    const auto late = responses_.Late();
    if (late && std::exchange(lastLateAnswer_, *late) != *late) {
        Send("Network.getCookies", {{"urls", Json::array()}}, [this, late](const Json* /*result*/) {
            connection_->Queue(address_.session, kAnswerMissingEvent, {{"number", *late}});
        });
    }
}

void PageSession::OnAnswerMissing(const Json& params) {
    ReportResponses(responses_.GiveUp(params.at("number").get<std::uint64_t>()));
}

void PageSession::OnWorkerAttached(const Json& params) {
    workers_.Add(params, weak_from_this());
}

void PageSession::OnWorkerDetached(const Json& params) {
    workers_.Remove(params);
}

// --- certificates and challenges

void PageSession::SetCertificateReports(bool enabled) {
    certificateReports_ = enabled;
    if (enabled) {
        Send("Security.enable");
        Send("Security.setOverrideCertificateErrors", {{"override", true}});
    } else {
        Send("Security.disable");
    }
}

/// Chromium tells of them also where it does not wait for an answer.
void PageSession::OnCertificateError(const Json& params) {
    if (!certificateReports_ || client_ == nullptr) {
        return;
    }
    const auto answer = [&](const char* action) {
        Send("Security.handleCertificateError", {{"eventId", params.at("eventId")}, {"action", action}});
    };
    try {
        answer(Allow(ProblemFrom(params)) ? "continue" : "cancel");
    } catch (const Json::exception&) {
        answer("cancel");
        throw;
    }
}

bool PageSession::Allow(const CertificateProblem& problem) {
    if (!certificates_->Contain(address_.context, problem) &&
        client_->OnCertificateError(problem) == CertificateDecision::AlwaysAllow) {
        certificates_->Add(address_.context, problem);
    }
    const bool allowed = certificates_->Contain(address_.context, problem);
    if (!allowed) {
        navigations_.Refuse(problem.url, problem.error);
    }
    return allowed;
}

/// Whatever becomes of it here, the challenge does not stay open.
void PageSession::OnAuthenticationRequired(const Json& params) {
    AuthenticationAnswer answer;
    try {
        if (client_ != nullptr) {
            answer = client_->OnAuthenticationRequested(ChallengeFrom(params));
        }
    } catch (const Json::exception&) {
        Send("Fetch.continueWithAuth", AnswerParameters(params, {}));
        throw;
    }
    Send("Fetch.continueWithAuth", AnswerParameters(params, answer));
}

} // namespace testbed::chromium
