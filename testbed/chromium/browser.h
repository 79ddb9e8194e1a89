// A real Chromium without a window of its own, as a process of the host: where pages come from.
//
// Everything in this folder belongs to the thread that opened the browser. That thread has to run a message loop: all that
// Chromium says arrives through it, as posted messages, and no function here waits for Chromium (but see `~Browser`).
// Texts are UTF-8; an error is a Win32 code, 0 meaning none.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <windows.h>

namespace testbed::chromium {

class AllowedCertificates;
class BrowserOpening;
class Connection;
class EventSink;
class Page;
class PageClient;

struct BrowserOptions {
    /// What pages and servers are told; empty: Chromium's own, without the word that gives away that it has no window.
    std::string userAgent = {};
    /// Whether the user data folder goes when Chromium has ended, however it ends. Left alone where it is in use elsewhere.
    bool temporaryFolder = false;
};

/// One Chromium process on one user data folder. It ends with its last owner, or with the host process, however that ends.
class Browser : public std::enable_shared_from_this<Browser> {
  public:
    using Opened = std::function<void(std::shared_ptr<Browser> browser, DWORD error)>;
    using PageCreated = std::function<void(std::unique_ptr<Page> page, DWORD error)>;

    /// Opens the browser of a user data folder. While one is alive on this thread for that folder it is shared, and
    /// `options` are ignored.
    ///
    /// @param folder a Windows path; made if it is missing.
    /// @param opened called exactly once, from the message loop, never inside this call. It gets a browser, or an error:
    ///        `ERROR_SHARING_VIOLATION`: another process, or another thread, has a Chromium on that folder;
    ///        `ERROR_FILE_NOT_FOUND`: there is no Chromium;
    ///        `ERROR_PROCESS_ABORTED`: Chromium ended before it answered;
    ///        or why the folder or the process could not be made (`ERROR_DIRECTORY`: it is a file).
    ///        The module that holds this code must stay loaded until then.
    static void Open(const std::wstring& folder, const BrowserOptions& options, Opened opened);

    /// Asks Chromium to end and waits until it has, four seconds at most; usual are some 100 ms. After that the folder is
    /// free for the next `Open`.
    ~Browser();
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    /// Makes an empty page (about:blank).
    ///
    /// @param inPrivate the page gets a profile of its own that is empty and vanishes with it.
    /// @param client is told what happens from the moment `created` is called on; it has to outlive the page, or the
    ///        page's `Close`.
    /// @param created called exactly once, from the message loop, with a page or with an error
    ///        (`ERROR_PROCESS_ABORTED`: Chromium has ended) -- unless this browser is destroyed before: then it is dropped.
    ///        Meanwhile it is the caller who keeps this browser; afterwards the page does.
    void CreatePage(bool inPrivate, PageClient& client, PageCreated created);

    /// "156.0.8078.79"
    const std::string& Version() const { return version_; }

    /// The connection to Chromium, for commands about the browser as a whole.
    const std::shared_ptr<Connection>& Protocol() const { return connection_; }

    /// Whether Chromium still runs. Once it does not, this browser is of no more use; the next `Open` starts another one.
    bool Alive() const;

  private:
    friend class BrowserOpening;
    friend class PageCreation;
    Browser(std::shared_ptr<Connection> connection, std::shared_ptr<BrowserOpening> opening,
            std::string version, std::string userAgent);

    std::shared_ptr<Connection> connection_;
    std::shared_ptr<EventSink> newWindows_;
    std::shared_ptr<AllowedCertificates> certificates_;
    std::shared_ptr<BrowserOpening> opening_; // by which others find this browser
    std::string version_;
    std::string userAgent_;
};

} // namespace testbed::chromium
