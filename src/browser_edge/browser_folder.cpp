// Reading of the runtime's folder.
#include "browser_edge/browser_folder.h"

#include <utility>

#include "dp/environment.h"
#include "du/string_utilities.h"

namespace kelda {

BrowserFolder BrowserFolder::FromEnvironment() {
    return BrowserFolder(dp::Environment::Get("MERIDO_WEBVIEW2_BROWSER_EXECUTABLE_FOLDER"));
}

BrowserFolder::BrowserFolder(std::string text)
    : text_(std::move(text)), wideText_(du::Utf8ToWideStr(text_)) {}

} // namespace kelda
