// The legacy browser. Included by kelda.h.
#pragma once

#include <memory>

#include "kelda/zan_web_browser.h"

namespace kelda {

/// See `ZanWebBrowser`. `Create` sets the User-Agent of the process: what urlmon sends changes with it for good. There is one
/// of these browsers at a time that gets the editing keys: the one that was created last, until any of them goes.
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
