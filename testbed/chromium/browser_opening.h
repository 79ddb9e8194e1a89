// One start of a Chromium, from its launch to its first answer, for all who wait for it.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "testbed/chromium/browser.h"
#include "testbed/chromium/connection.h"

namespace testbed::chromium {

/// Kept alive by the reply that it waits for, and then by the browser.
class BrowserOpening : public std::enable_shared_from_this<BrowserOpening> {
  public:
    explicit BrowserOpening(std::string userAgent) : userAgent_(std::move(userAgent)) {}

    /// @return null and a Win32 error if Chromium could not even be launched.
    static std::shared_ptr<BrowserOpening> Start(const std::string& nativeFolder,
                                                 const BrowserOptions& options, DWORD& error);

    void Join(Browser::Opened opened) { waiting_.push_back(std::move(opened)); }

    /// Null until there is one, and after it has gone.
    std::shared_ptr<Browser> Opened() const { return browser_.lock(); }
    /// Whether it is still of use to somebody who wants a browser.
    bool Usable() const;

  private:
    void OnVersion(const Json* result);
    void Answer(const std::shared_ptr<Browser>& browser, DWORD error);

    std::string userAgent_;
    std::shared_ptr<Connection> connection_; // the browser's once there is one
    std::weak_ptr<Browser> browser_;
    std::vector<Browser::Opened> waiting_;
};

} // namespace testbed::chromium
