// The legacy browser. Included by kelda.h.
#pragma once

#include <memory>

#include "kelda/zan_web_browser.h"

namespace kelda {

/// See `ZanWebBrowser`. This version shows no page and touches no COM yet: each call only leaves a line in the trace.
class KELDA_API ZanWebBrowserIE : public ZanWebBrowser {
  public:
    ZanWebBrowserIE(const du::Symbol& serverUrl, int checkMode);
    ~ZanWebBrowserIE() override;

    void InitializeCom() override;
    void Create(Callback* callback, HWND parent) override;
    void Destroy() override;
    void Resize() override;
    HWND GetWindowHandle() override;

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace kelda
