#include "testbed/chromium/page_creation.h"

#include <utility>

#include "testbed/chromium/page.h"

namespace testbed::chromium {

void PageCreation::Start(const std::shared_ptr<Browser>& browser, bool inPrivate, PageClient& client,
                         Browser::PageCreated created) {
    const auto creation = std::make_shared<PageCreation>(browser, client, std::move(created));
    if (inPrivate) {
        creation->Send("Target.createBrowserContext", {{"disposeOnDetach", true}}, &PageCreation::OnContext);
    } else {
        creation->CreateTarget();
    }
}

void PageCreation::Send(const std::string& method, Json params, Step next) {
    if (const auto browser = browser_.lock()) {
        browser->connection_->Send(method, std::move(params), {},
                                   [self = shared_from_this(), next](const Json* result) {
                                       if (result != nullptr) {
                                           (self.get()->*next)(*result);
                                       } else {
                                           self->Fail();
                                       }
                                   });
    }
}

void PageCreation::OnContext(const Json& result) {
    contextId_ = result.at("browserContextId").get<std::string>();
    if (const auto browser = browser_.lock()) {
        browser->connection_->Send("Browser.setDownloadBehavior",
                                   {{"behavior", "deny"}, {"browserContextId", contextId_}}, {});
    }
    CreateTarget();
}

void PageCreation::CreateTarget() {
    Json params = {{"url", "about:blank"}};
    if (!contextId_.empty()) {
        params["browserContextId"] = contextId_;
    }
    Send("Target.createTarget", std::move(params), &PageCreation::OnTarget);
}

void PageCreation::OnTarget(const Json& result) {
    targetId_ = result.at("targetId").get<std::string>();
    Send("Target.attachToTarget", {{"targetId", targetId_}, {"flatten", true}}, &PageCreation::OnAttached);
}

void PageCreation::OnAttached(const Json& result) {
    const auto browser = browser_.lock();
    if (browser == nullptr) {
        return;
    }
    session_ = std::make_shared<PageSession>(
        browser->connection_,
        PageSession::Address{result.at("sessionId").get<std::string>(), targetId_, contextId_});
    session_->Prepare(browser->userAgent_, [self = shared_from_this()](const Json* prepared) {
        if (prepared != nullptr) {
            self->OnPrepared(*prepared);
        } else {
            self->Fail();
        }
    });
}

void PageCreation::OnPrepared(const Json& /*result*/) {
    if (auto browser = browser_.lock()) {
        session_->SetClient(client_);
        created_(std::unique_ptr<Page>(new Page(std::move(browser), std::move(session_))), ERROR_SUCCESS);
    }
}

void PageCreation::Fail() {
    if (browser_.lock() != nullptr) {
        created_(nullptr, ERROR_PROCESS_ABORTED);
    }
}

} // namespace testbed::chromium
