// The choice of the browser, which is the tests' own here.
#include "dialog_test.h"

namespace kelda {

ZanWebBrowser::~ZanWebBrowser() = default;

std::shared_ptr<ZanWebBrowser> ZanWebBrowser::Factory(const du::Symbol& serverUrl, int checkMode) {
    return DialogTest::current->Make(serverUrl, checkMode);
}

} // namespace kelda
