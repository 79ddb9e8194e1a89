// Where the objects of a web view find its page: closing the web view empties it under them all.
#pragma once

#include <memory>

#include "testbed/chromium/page.h"

namespace webview2_runtime {

struct PageSlot {
    std::unique_ptr<testbed::chromium::Page> page; ///< null before the page is there, and once it is closed
};
using SharedPage = std::shared_ptr<PageSlot>;

} // namespace webview2_runtime
