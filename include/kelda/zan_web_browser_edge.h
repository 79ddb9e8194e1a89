// The browser on the WebView2 runtime. Included by kelda.h.
#pragma once

#include <memory>

#include "kelda/zan_web_browser.h"

namespace kelda {

/// See `ZanWebBrowser`. Use it directly only where WebView2 is known to be there: `ZanWebBrowser::Factory` finds out,
/// and clears the variables by which the runtime could be steered from outside.
///
/// The parent window's thread must pump messages: the browser comes up in several steps after `Create` has returned.
/// `GetWindowHandle` answers null, as the runtime does not tell its window. `Resize` before the browser is there does
/// nothing. The object ends COM on its thread once when it is destroyed, whatever `InitializeCom` has found.
///
/// Before the page is asked for, a load balancer's cookies that WinINet holds for the server are copied into the
/// runtime, and the session's with them. When the session is reported, the runtime's cookies for the address are copied
/// into WinINet, which the whole process shares, so that later downloads carry the session. Only then is the owner
/// told, by a timer of the host's toolkit, from the message loop and not from inside a call of the runtime's: there
/// it may also delete the browser. With the word "parse" in the variable MERIDO_ZANWEBBROWSER_IMPLEMENTATION nothing
/// is copied then, and the owner is told at once, from inside the page's call or the runtime's: there it must not.
class KELDA_API ZanWebBrowserEdge : public ZanWebBrowser {
  public:
    ZanWebBrowserEdge(const du::Symbol& serverUrl, int checkMode);
    ~ZanWebBrowserEdge() override;

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
