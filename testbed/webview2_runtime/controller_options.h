// What a controller is made with.
#pragma once

#include <string>

#include "com_object.h"
#include "com_text.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

class ControllerOptions : public ComObject<webview2::NotImplemented<ICoreWebView2ControllerOptions>,
                                           ICoreWebView2ControllerOptions> {
  public:
    HRESULT STDMETHODCALLTYPE get_ProfileName(LPWSTR* value) override;
    /// Kept only. E_INVALIDARG for a name that cannot be a profile's: 1 to 64 letters, digits, blanks and "#@$()+-_~.",
    /// ending neither in a blank nor in a dot.
    HRESULT STDMETHODCALLTYPE put_ProfileName(LPCWSTR value) override;
    HRESULT STDMETHODCALLTYPE get_IsInPrivateModeEnabled(BOOL* value) override;
    HRESULT STDMETHODCALLTYPE put_IsInPrivateModeEnabled(BOOL value) override;

  private:
    std::wstring profileName_ = L"Default";
    bool inPrivate_ = false;
};

} // namespace webview2_runtime
