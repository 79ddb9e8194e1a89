// Which folder has which browser; what belongs to a browser as a whole.
#include "testbed/chromium/browser.h"

#include <map>
#include <utility>

#include "testbed/chromium/browser_opening.h"
#include "testbed/chromium/connection.h"
#include "testbed/chromium/exclusive_lock.h"
#include "testbed/chromium/launch.h"
#include "testbed/chromium/page_creation.h"
#include "testbed/chromium/trust.h"

namespace testbed::chromium {
namespace {

/// Closes the windows that pages open: nobody would show them.
class NewWindows final : public EventSink {
  public:
    explicit NewWindows(std::weak_ptr<Connection> connection) : connection_(std::move(connection)) {}

    void OnEvent(const std::string& method, const Json& params) override {
        const auto connection = connection_.lock();
        if (method != "Target.targetCreated" || connection == nullptr) {
            return;
        }
        const Json& target = params.at("targetInfo");
        if (target.at("type") == "page" && target.contains("openerId")) {
            connection->Send("Target.closeTarget", {{"targetId", target.at("targetId")}}, {});
        }
    }
    void OnConnectionLost() override {}

  private:
    std::weak_ptr<Connection> connection_;
};

/// Two threads do not share a browser, so a folder is another one for each.
using Key = std::pair<DWORD, std::string>;

struct Openings {
    SRWLOCK lock = SRWLOCK_INIT;
    std::map<Key, std::weak_ptr<BrowserOpening>> entries;
};

Openings& AllOpenings() {
    static Openings openings;
    return openings;
}

/// The opening that serves a folder: the one that there is, or a new one.
std::shared_ptr<BrowserOpening> FindOrStart(const std::string& nativeFolder, const BrowserOptions& options,
                                            DWORD& error) {
    Openings& openings = AllOpenings();
    const ExclusiveLock locked(openings.lock);
    std::weak_ptr<BrowserOpening>& entry = openings.entries[{GetCurrentThreadId(), nativeFolder}];
    auto opening = entry.lock();
    if (opening == nullptr || !opening->Usable()) {
        opening = BrowserOpening::Start(nativeFolder, options, error);
        entry = opening;
    }
    return opening;
}

} // namespace

void Browser::Open(const std::wstring& folder, const BrowserOptions& options, Opened opened) {
    DWORD error = ERROR_SUCCESS;
    const std::string nativeFolder = NativeFolder(folder, error);
    const auto opening = nativeFolder.empty() ? nullptr : FindOrStart(nativeFolder, options, error);
    if (opening == nullptr) {
        CallLater([opened = std::move(opened), error] { opened(nullptr, error); });
    } else if (const auto browser = opening->Opened()) {
        CallLater([opened = std::move(opened), browser] { opened(browser, ERROR_SUCCESS); });
    } else {
        opening->Join(std::move(opened));
    }
}

Browser::Browser(std::shared_ptr<Connection> connection, std::shared_ptr<BrowserOpening> opening,
                 std::string version, std::string userAgent)
    : connection_(std::move(connection)),
      newWindows_(std::make_shared<NewWindows>(connection_)),
      certificates_(std::make_shared<AllowedCertificates>()),
      opening_(std::move(opening)),
      version_(std::move(version)),
      userAgent_(std::move(userAgent)) {
    connection_->Attach({}, newWindows_);
    connection_->Send("Target.setDiscoverTargets", {{"discover", true}}, {});
    connection_->Send("Browser.setDownloadBehavior", {{"behavior", "deny"}}, {});
}

Browser::~Browser() {
    connection_->End();
}

bool Browser::Alive() const {
    return connection_->Alive();
}

void Browser::CreatePage(bool inPrivate, PageClient& client, PageCreated created) {
    PageCreation::Start(shared_from_this(), inPrivate, client, std::move(created));
}

} // namespace testbed::chromium
