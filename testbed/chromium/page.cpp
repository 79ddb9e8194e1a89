// The commands of a page: each is one of the protocol's.
#include "testbed/chromium/page.h"

#include <array>
#include <string_view>
#include <utility>

#include "testbed/chromium/browser.h"
#include "testbed/chromium/page_session.h"

namespace testbed::chromium {
namespace {

struct SameSiteName {
    SameSite value;
    std::string_view name;
};

constexpr std::array kSameSiteNames = {SameSiteName{SameSite::None, "None"},
                                       SameSiteName{SameSite::Lax, "Lax"},
                                       SameSiteName{SameSite::Strict, "Strict"}};

Json JsonOf(const Cookie& cookie) {
    Json json = {{"name", cookie.name}, {"value", cookie.value},   {"domain", cookie.domain},
                 {"path", cookie.path}, {"secure", cookie.secure}, {"httpOnly", cookie.httpOnly}};
    if (cookie.expires != -1) {
        json["expires"] = cookie.expires;
    }
    for (const auto& [value, name] : kSameSiteNames) {
        if (value == cookie.sameSite) {
            json["sameSite"] = name;
        }
    }
    return json;
}

Cookie CookieOf(const Json& json) {
    Cookie cookie;
    cookie.name = json.at("name").get<std::string>();
    cookie.value = json.at("value").get<std::string>();
    cookie.domain = json.at("domain").get<std::string>();
    cookie.path = json.at("path").get<std::string>();
    cookie.expires = json.value("session", false) ? -1 : json.at("expires").get<double>();
    cookie.httpOnly = json.at("httpOnly").get<bool>();
    cookie.secure = json.at("secure").get<bool>();
    const std::string sameSite = json.value("sameSite", "");
    for (const auto& [value, name] : kSameSiteNames) {
        if (name == sameSite) {
            cookie.sameSite = value;
        }
    }
    return cookie;
}

Connection::Reply CookieReply(Page::CookiesRead read) {
    return [read = std::move(read)](const Json* result) {
        if (result == nullptr) {
            read(std::nullopt);
            return;
        }
        std::vector<Cookie> cookies;
        for (const Json& cookie : result->at("cookies")) {
            cookies.push_back(CookieOf(cookie));
        }
        read(std::move(cookies));
    };
}

std::optional<std::string> ResultOf(const Json* reply) {
    if (reply == nullptr) {
        return std::nullopt;
    }
    return reply->contains("exceptionDetails") ? "null" : reply->at("result").value("value", Json()).dump();
}

} // namespace

Page::Page(std::shared_ptr<Browser> browser, std::shared_ptr<PageSession> session)
    : browser_(std::move(browser)), session_(std::move(session)) {}

Page::~Page() {
    Close();
}

void Page::Navigate(const std::string& url, const Headers& extraHeaders) {
    session_->Navigate(url, extraHeaders);
}

void Page::Stop() {
    session_->Stop();
}

void Page::Close() {
    session_->Close();
}

bool Page::Closed() const {
    return session_->Closed();
}

std::string Page::Url() const {
    return session_->Url();
}

void Page::SetScriptEnabled(bool enabled) {
    session_->SendSetting("Emulation.setScriptExecutionDisabled", {{"value", !enabled}});
}

void Page::SetScriptDialogsEnabled(bool enabled) {
    session_->SetScriptDialogsEnabled(enabled);
}

void Page::SetDialogOwner(HWND owner) {
    session_->SetDialogOwner(owner);
}

void Page::AddDocumentScript(const std::string& source, ScriptAdded added) {
    session_->SendSetting("Page.addScriptToEvaluateOnNewDocument", {{"source", source}},
                          [added = std::move(added)](const Json* result) {
                              if (added) {
                                  added(result == nullptr
                                            ? std::nullopt
                                            : std::optional(result->at("identifier").get<std::string>()));
                              }
                          });
}

void Page::RemoveDocumentScript(const std::string& id) {
    session_->SendSetting("Page.removeScriptToEvaluateOnNewDocument", {{"identifier", id}});
}

void Page::InstallBridge(const std::string& shim) {
    session_->InstallBridge(shim);
}

void Page::SetRequestInterception(bool enabled) {
    session_->SetRequestInterception(enabled);
}

void Page::SetCertificateReports(bool enabled) {
    session_->SetCertificateReports(enabled);
}

void Page::GetCookies(const std::vector<std::string>& urls, CookiesRead read) {
    session_->ReadCookies("Network.getCookies", {{"urls", urls}}, CookieReply(std::move(read)));
}

void Page::GetAllCookies(CookiesRead read) {
    session_->ReadCookies("Network.getAllCookies", Json::object(), CookieReply(std::move(read)));
}

void Page::SetCookie(const Cookie& cookie, Done done) {
    session_->ChangeCookies("Network.setCookie", JsonOf(cookie),
                            [done = std::move(done)](const Json* result) {
                                if (done) {
                                    done(result != nullptr && result->value("success", false));
                                }
                            });
}

void Page::DeleteCookies(const std::string& name, const std::string& url) {
    session_->ChangeCookies("Network.deleteCookies", {{"name", name}, {"url", url}});
}

void Page::DeleteCookies(const std::string& name, const std::string& domain, const std::string& path) {
    session_->ChangeCookies("Network.deleteCookies", {{"name", name}, {"domain", domain}, {"path", path}});
}

void Page::DeleteAllCookies() {
    session_->ChangeCookies("Network.clearBrowserCookies", Json::object());
}

void Page::Evaluate(const std::string& expression, Evaluated evaluated) {
    session_->Send(
        "Runtime.evaluate",
        {{"expression", expression}, {"awaitPromise", true}, {"returnByValue", true}, {"userGesture", true}},
        [evaluated = std::move(evaluated)](const Json* reply) {
            if (evaluated) {
                evaluated(ResultOf(reply));
            }
        });
}

} // namespace testbed::chromium
