// One page of a browser: navigation, scripts, requests and cookies. It shows nothing by itself; see page_view.h.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <windows.h>

#include "testbed/chromium/page_client.h"

namespace testbed::chromium {

class Browser;
class PageSession;

enum class SameSite {
    Unspecified,
    None, ///< Chromium refuses it without `secure`
    Lax,
    Strict
};

struct Cookie {
    std::string name;
    std::string value;
    std::string domain; ///< with a leading dot: for its subdomains as well
    std::string path = "/";
    double expires =
        -1; ///< seconds since 1970; -1 for a cookie of the session. What is past deletes the cookie.
    bool httpOnly = false;
    bool secure = false;
    SameSite sameSite = SameSite::Unspecified;
};

/// Keeps its browser. Belongs to the thread that opened that.
///
/// A callback is called at most once, from the message loop, never inside the call that it was given to. It is dropped
/// uncalled when the page is closed or destroyed; it fails when Chromium goes. A callback may be empty.
///
/// On a closed page every function does nothing, and callbacks are dropped. Once Chromium has gone `Navigate` and callbacks
/// fail, and all else does nothing.
class Page {
  public:
    using Done = std::function<void(bool success)>;
    using ScriptAdded = std::function<void(const std::optional<std::string>& id)>;
    using CookiesRead = std::function<void(std::optional<std::vector<Cookie>> cookies)>;
    using Evaluated = std::function<void(const std::optional<std::string>& json)>;

    /// Closes.
    ~Page();
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    /// Starts to load a page. What comes of it, an invalid URL included, is reported to the client.
    ///
    /// @param extraHeaders go into the first request of the navigation, in place of Chromium's own of the same name (names
    ///        are compared without regard to case). They are there already when the client's `OnRequest` sees it; they are
    ///        not repeated on redirects.
    void Navigate(const std::string& url, const Headers& extraHeaders = {});

    /// Ends what is being loaded; an open navigation completes as `Aborted`.
    void Stop();

    /// Ends the page: the client hears no more of it, and its view shows nothing.
    void Close();
    bool Closed() const;

    /// The URL of the document that is shown.
    std::string Url() const;

    /// Whether pages may run scripts; from the next document on. On at first.
    void SetScriptEnabled(bool enabled);

    /// Whether alert, confirm, prompt and the question before leaving are shown as message boxes. On at first; while off
    /// they are answered at once: the question before leaving with yes, the others as if dismissed.
    void SetScriptDialogsEnabled(bool enabled);

    /// The window whose top-level window owns those boxes; a view sets it to itself.
    void SetDialogOwner(HWND owner);

    /// Adds a script that runs in every document from the next one on, before scripts of that, and after scripts that
    /// were added earlier. Frames are reached, those from other sites too.
    ///
    /// @param added gets the id, or nothing on a failure.
    void AddDocumentScript(const std::string& source, ScriptAdded added);
    void RemoveDocumentScript(const std::string& id);

    /// Lets the scripts of pages talk to the client: see `PageClient::OnBridgeMessage`. To be called at most once, before
    /// the first `AddDocumentScript`, so that the bridge runs before all others.
    ///
    /// @param shim an expression of JavaScript that is a function. It is called in every document, from the next one on,
    ///        before scripts of the page, with one argument: a function that takes a text and sends it to the client. It
    ///        returns the function that replies are handed to, as a text each. That one is called in a task of its own.
    ///        Example: `(send) => { window.ask = () => send("x"); return (text) => console.log(text); }`
    void InstallBridge(const std::string& shim);

    /// Whether `OnRequest` is called. Off at first.
    void SetRequestInterception(bool enabled);

    /// Whether `OnCertificateError` is called. Off at first: then Chromium shows its error page.
    void SetCertificateReports(bool enabled);

    /// Gets the cookies that would be sent to any of these URLs, in no particular order; or a failure.
    void GetCookies(const std::vector<std::string>& urls, CookiesRead read);
    /// Those of the whole profile.
    void GetAllCookies(CookiesRead read);

    /// A navigation started after this carries the cookie. `done` tells whether Chromium has taken it.
    void SetCookie(const Cookie& cookie, Done done = {});

    /// Deletes the cookies of that name that would be sent to `url`.
    void DeleteCookies(const std::string& name, const std::string& url);
    /// Deletes the cookie of that name, domain and path.
    void DeleteCookies(const std::string& name, const std::string& domain, const std::string& path);
    /// Those of the whole profile.
    void DeleteAllCookies();

    /// Runs a script in the main frame; a promise is waited for. While the request of a navigation waits, for the client or
    /// for the server, scripts wait too.
    ///
    /// @param evaluated gets the result as JSON ("null" for what JSON has no word for, and of a script that throws), or
    ///        nothing if the document, its renderer or Chromium has gone before the script was through.
    void Evaluate(const std::string& expression, Evaluated evaluated);

  private:
    friend class PageCreation;
    friend class PageView;
    Page(std::shared_ptr<Browser> browser, std::shared_ptr<PageSession> session);

    std::shared_ptr<Browser> browser_;
    std::shared_ptr<PageSession> session_;
};

} // namespace testbed::chromium
