// The steps that make a page: profile, target, session, and what the session is to report.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "testbed/chromium/browser.h"
#include "testbed/chromium/connection.h"
#include "testbed/chromium/page_session.h"

namespace testbed::chromium {

/// Kept alive by the reply that it waits for.
class PageCreation : public std::enable_shared_from_this<PageCreation> {
  public:
    static void Start(const std::shared_ptr<Browser>& browser, bool inPrivate, PageClient& client,
                      Browser::PageCreated created);

    PageCreation(const std::shared_ptr<Browser>& browser, PageClient& client, Browser::PageCreated created)
        : browser_(browser), client_(client), created_(std::move(created)) {}

  private:
    using Step = void (PageCreation::*)(const Json& result);

    /// Goes on with `next`, or fails.
    void Send(const std::string& method, Json params, Step next);
    void GoOn(const Json* result, Step next);
    void OnContext(const Json& result);
    void CreateTarget();
    void OnTarget(const Json& result);
    void OnAttached(const Json& result);
    void OnPrepared(const Json& result);
    void Fail();

    std::weak_ptr<Browser> browser_;
    PageClient& client_;
    Browser::PageCreated created_; // null once it has been called
    std::string contextId_;        // empty: that of the folder
    std::string targetId_;
    std::shared_ptr<PageSession> session_;
};

} // namespace testbed::chromium
