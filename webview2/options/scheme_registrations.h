// One property of the options object: the custom schemes, an array of counted objects.
#pragma once

#include <windows.h>

#include "declarations/environment.h"

namespace webview2_detail {

/// Holds a reference to each registration.
class SchemeRegistrations {
  public:
    SchemeRegistrations() = default;
    ~SchemeRegistrations();
    SchemeRegistrations(const SchemeRegistrations&) = delete;
    SchemeRegistrations& operator=(const SchemeRegistrations&) = delete;

    /// @param count receives the number of registrations.
    /// @param registrations receives an array, the caller's to free with CoTaskMemFree after releasing each element; null
    ///        if there is none.
    HRESULT Get(UINT32* count, ICoreWebView2CustomSchemeRegistration*** registrations) const;

    /// Takes the place of the former registrations, which are released. The array stays the caller's. E_POINTER, and
    /// nothing changed, for a missing array or element.
    HRESULT Set(UINT32 count, ICoreWebView2CustomSchemeRegistration* const* registrations);

  private:
    UINT32 count_ = 0;
    ICoreWebView2CustomSchemeRegistration** registrations_ = nullptr;
};

} // namespace webview2_detail
