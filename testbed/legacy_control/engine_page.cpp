// The way between a control and its page: coming up, going, and what happens to requests and answers between the two.
#include "engine_page.h"

#include <utility>

#include "document_shim.h"
#include "testbed/chromium/header_text.h"
#include "testbed/chromium/message_window.h"
#include "testbed/chromium/text.h"
#include "user_agent.h"

namespace legacy_control {

using nlohmann::json;
using testbed::chromium::Browser;

EnginePage::~EnginePage() {
    Close();
}

void EnginePage::Open() {
    if (opening_ || page_ != nullptr || owner_ == nullptr) {
        return;
    }
    opening_ = true;
    folder_ = ProfileFolder::OfThisThread();
    Browser::Open(folder_->Path(), {.temporaryFolder = true},
                  [self = shared_from_this()](const std::shared_ptr<Browser>& browser, DWORD /*error*/) {
                      self->OnBrowser(browser);
                  });
}

void EnginePage::OnBrowser(const std::shared_ptr<Browser>& browser) {
    if (owner_ == nullptr) {
        return;
    }
    if (browser == nullptr) {
        Lose();
    } else {
        browser_ = browser;
        browser->CreatePage(
            true, *this,
            [self = shared_from_this()](std::unique_ptr<testbed::chromium::Page> page, DWORD /*error*/) {
                self->OnPageCreated(std::move(page));
            });
    }
}

void EnginePage::OnPageCreated(std::unique_ptr<testbed::chromium::Page> page) {
    if (owner_ == nullptr) {
        return;
    }
    if (page == nullptr) {
        Lose();
        return;
    }
    opening_ = false;
    testbed::chromium::Page& made = *page;
    page_ = std::move(page);
    browser_.reset();
    made.InstallBridge(DocumentShim());
    made.SetRequestInterception(true);
    owner_->OnPage(made);
    if (const auto url = std::exchange(wanted_, {}); url && page_ != nullptr) {
        Start(*url);
    }
}

/// The next `Open` tries again.
void EnginePage::Lose() {
    opening_ = false;
    wanted_.reset();
    started_ = 0;
    cookies_.Clear();
    if (owner_ != nullptr) {
        owner_->OnPageLost(); // its view goes before the page
    }
    page_.reset();
    browser_.reset();
    folder_.reset();
}

void EnginePage::Navigate(const std::string& url) {
    if (page_ != nullptr) {
        Start(url);
        return;
    }
    wanted_ = url;
    Open();
}

bool EnginePage::Stop() {
    if (page_ != nullptr) {
        page_->Stop();
    }
    return std::exchange(wanted_, {}).has_value();
}

void EnginePage::Start(const std::string& url) {
    if (const auto parts = TakeApart(url)) {
        cookies_.Adjust(*parts, *page_);
    }
    ++started_;
    page_->Navigate(url);
}

void EnginePage::Close() {
    owner_ = nullptr;
    wanted_.reset();
    page_.reset();
    browser_.reset();
    folder_.reset();
}

bool EnginePage::OnNavigationStarting(const testbed::chromium::NavigationStart& start) {
    bool goesOn = false;
    During([&] {
        // There is no telling who has started it, but the owner's come in the order in which they were wanted.
        const bool wanted = !start.redirected && started_ > 0;
        started_ -= wanted ? 1 : 0;
        goesOn = owner_ != nullptr && owner_->OnStarting(start, wanted);
    });
    return goesOn;
}

void EnginePage::OnRequest(testbed::chromium::Request& request) {
    During([&] {
        if (const auto parts = TakeApart(request.url)) {
            if (const auto line = cookies_.Adjust(*parts, *page_)) {
                testbed::chromium::Replace(request.headers, {{"Cookie", *line}});
            }
        }
        if (const std::string agent = CurrentUserAgent(); !agent.empty()) {
            testbed::chromium::Replace(request.headers, {{"User-Agent", agent}});
        }
    });
}

void EnginePage::OnResponse(const testbed::chromium::Response& response) {
    During([&] {
        ReadCookies(response);
        if (owner_ != nullptr) {
            owner_->OnAnswer(response);
        }
    });
}

void EnginePage::ReadCookies(const testbed::chromium::Response& response) {
    const auto parts = TakeApart(response.url);
    if (!parts) {
        return;
    }
    for (const testbed::chromium::Header& header : response.headers) {
        if (testbed::chromium::SameName(header.name, "Set-Cookie")) {
            cookies_.OnServerCookie(*parts, header.value);
        }
    }
}

testbed::chromium::CertificateDecision
EnginePage::OnCertificateError(const testbed::chromium::CertificateProblem& /*problem*/) {
    return testbed::chromium::CertificateDecision::Cancel;
}

testbed::chromium::AuthenticationAnswer
EnginePage::OnAuthenticationRequested(const testbed::chromium::AuthenticationChallenge& /*challenge*/) {
    return {};
}

void EnginePage::OnNavigationCompleted(const testbed::chromium::NavigationOutcome& outcome) {
    During([&] {
        if (owner_ != nullptr) {
            owner_->OnCompleted(outcome);
        }
    });
}

void EnginePage::OnBridgeMessage(const std::string& message,
                                 std::function<void(const std::string& text)> reply) {
    During([&] { OnDocumentMessage(json::parse(message), reply); });
}

void EnginePage::OnDocumentMessage(const json& message,
                                   const std::function<void(const std::string& text)>& reply) {
    if (message.at("kind") != "cookie") {
        if (owner_ != nullptr) {
            owner_->OnMessage(message, reply);
        }
    } else if (const auto parts = TakeApart(message.at("url").get<std::string>())) {
        cookies_.OnScriptCookie(*parts, message.at("text").get<std::string>());
    }
}

void EnginePage::OnCrashed(testbed::chromium::Crash crash) {
    During([&] {
        if (crash == testbed::chromium::Crash::Browser) {
            Lose();
        }
    });
}

} // namespace legacy_control
