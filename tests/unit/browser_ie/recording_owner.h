// The owner of a browser, which records what it is told.
#pragma once

#include <functional>

#include "kelda/zan_web_browser.h"
#include "tests/support/transcript.h"

namespace kelda {

class RecordingOwner final : public ZanWebBrowser::Callback {
  public:
    void OnNavigationCompleted() override { Happen("OnNavigationCompleted"); }
    void OnSessionAuthenticated() override { Happen("OnSessionAuthenticated"); }
    void OnSessionAuthenticatedFailed() override { Happen("OnSessionAuthenticatedFailed"); }

    /// What the owner does when it is told.
    std::function<void()> during;

  private:
    void Happen(const char* call) const {
        test_support::Record(call);
        if (during) {
            during();
        }
    }
};

} // namespace kelda
