// The table of folders and the starts that are under way.
#include "testbed/chromium/browser_opening.h"

#include <string_view>
#include <utility>

#include "testbed/chromium/launch.h"

namespace testbed::chromium {
namespace {

/// "HeadlessChrome" would tell servers that nobody is looking.
std::string WithoutHeadless(std::string userAgent) {
    constexpr std::string_view kWord = "Headless";
    if (const std::size_t found = userAgent.find(kWord); found != std::string::npos) {
        userAgent.erase(found, kWord.size());
    }
    return userAgent;
}

} // namespace

std::shared_ptr<BrowserOpening> BrowserOpening::Start(const std::string& nativeFolder,
                                                      const BrowserOptions& options, DWORD& error) {
    auto opening = std::make_shared<BrowserOpening>(options.userAgent);
    opening->connection_ = Connection::Start({nativeFolder, options.temporaryFolder}, error);
    if (opening->connection_ == nullptr) {
        return nullptr;
    }
    opening->connection_->Send("Browser.getVersion", Json::object(), {},
                               [opening](const Json* result) { opening->OnVersion(result); });
    return opening;
}

bool BrowserOpening::Usable() const {
    const auto browser = browser_.lock();
    return connection_ != nullptr || (browser != nullptr && browser->Alive());
}

void BrowserOpening::OnVersion(const Json* result) {
    const auto connection = std::exchange(connection_, nullptr);
    if (result == nullptr) {
        const auto status = connection->ExitStatus();
        Answer(nullptr, status == kExitedFolderInUse ? DWORD{ERROR_SHARING_VIOLATION}
                        : status == kExitedNotFound  ? DWORD{ERROR_FILE_NOT_FOUND}
                                                     : DWORD{ERROR_PROCESS_ABORTED});
        return;
    }
    const auto product = result->at("product").get<std::string>();
    const std::shared_ptr<Browser> browser(new Browser(
        connection, shared_from_this(), product.substr(product.find('/') + 1),
        userAgent_.empty() ? WithoutHeadless(result->at("userAgent").get<std::string>()) : userAgent_));
    browser_ = browser;
    Answer(browser, ERROR_SUCCESS);
}

void BrowserOpening::Answer(const std::shared_ptr<Browser>& browser, DWORD error) {
    for (const Browser::Opened& opened : std::exchange(waiting_, {})) {
        opened(browser, error);
    }
}

} // namespace testbed::chromium
