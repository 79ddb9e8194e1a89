// The events of the control: their numbers and arguments.
#pragma once

#include <string>

#include <windows.h>

#include <exdisp.h>

#include "event_source.h"

namespace legacy_control {

/// Texts are UTF-8. In each of these functions the host may do whatever it likes, close the control included.
class BrowserEvents {
  public:
    /// @param browser whom the events say that they are about.
    BrowserEvents(EventSource& source, IDispatch& browser) : source_(source), browser_(browser) {}

    /// @return false if somebody has cancelled.
    bool BeforeNavigate(const std::string& url, LONG flags) const;
    void DownloadBegin() const;
    void DownloadComplete() const;
    void CommandStateChange() const;
    void ProgressChange(LONG progress, LONG most) const;
    void StatusTextChange(const std::string& text) const;
    void TitleChange(const std::string& title) const;
    void NavigateComplete(const std::string& url) const;
    void DocumentComplete(const std::string& url) const;
    /// @return false if somebody has cancelled.
    bool NavigateError(const std::string& url, LONG status) const;

  private:
    VARIANTARG Browser() const;
    void RaiseText(DISPID event, const std::string& text) const;
    void RaiseUrl(DISPID event, const std::string& url) const;

    EventSource& source_;
    IDispatch& browser_;
};

} // namespace legacy_control
