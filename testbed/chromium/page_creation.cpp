// One command after the other until the page is there.
#include "testbed/chromium/page_creation.h"

#include <exception>
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
        browser->connection_->Send(
            method, std::move(params), {},
            [self = shared_from_this(), next](const Json* result) { self->GoOn(result, next); });
    }
}

void PageCreation::GoOn(const Json* result, Step next) {
    if (result == nullptr) {
        Fail();
        return;
    }
    try {
        (this->*next)(*result);
    } catch (const std::exception& problem) {
        OutputDebugStringA(problem.what());
        Fail();
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
        PageSession::Address{result.at("sessionId").get<std::string>(), targetId_, contextId_},
        browser->certificates_);
    session_->Prepare(browser->userAgent_, [self = shared_from_this()](const Json* prepared) {
        self->GoOn(prepared, &PageCreation::OnPrepared);
    });
}

void PageCreation::OnPrepared(const Json& /*result*/) {
    if (auto browser = browser_.lock()) {
        session_->SetClient(client_);
        std::unique_ptr<Page> page(new Page(std::move(browser), std::move(session_)));
        std::exchange(created_, nullptr)(std::move(page), ERROR_SUCCESS);
    }
}

void PageCreation::Fail() {
    const auto browser = browser_.lock();
    if (browser == nullptr || created_ == nullptr) {
        return;
    }
    Connection& connection = *browser->connection_;
    if (session_ != nullptr) {
        session_->Close();
    } else {
        if (!targetId_.empty()) {
            connection.Send("Target.closeTarget", {{"targetId", targetId_}}, {});
        }
        if (!contextId_.empty()) {
            connection.Send("Target.disposeBrowserContext", {{"browserContextId", contextId_}}, {});
        }
    }
    std::exchange(created_, nullptr)(nullptr, ERROR_PROCESS_ABORTED);
}

} // namespace testbed::chromium
