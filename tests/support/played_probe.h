// Plays the URL-moniker stack for a whole probe: every bind is answered by a script of the test, inside the bind call.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include <urlmon.h>
#include <wrl/client.h>

#include "du/string_utilities.h"
#include "tests/support/fake_moniker.h"
#include "tests/support/replaced_import.h"

namespace test_support {

/// While it lives, `CreateURLMoniker` of the test program gives fakes, and the callback that is registered for a bind is
/// handed to the script. The script's result is the bind's.
class PlayedProbe {
  public:
    using Script = std::function<HRESULT(IBindStatusCallback& callback)>;

    explicit PlayedProbe(Script script) : script_(std::move(script)) {}

    /// The addresses that were bound to, in order.
    const std::vector<std::string>& Addresses() const { return addresses_; }

  private:
    HRESULT Create(LPCWSTR url, IMoniker** moniker) {
        addresses_.push_back(du::WideStrToUtf8(url));
        auto* const fake = new FakeMoniker;
        fake->bind = [this](IBindCtx*, IStream**) {
            const Microsoft::WRL::ComPtr<IBindStatusCallback> keepsItAlive = callback_;
            return script_(*callback_);
        };
        *moniker = fake;
        return S_OK;
    }

    Script script_;
    IBindStatusCallback* callback_ = nullptr; // registered for the current bind, which outlives the use of it
    std::vector<std::string> addresses_;
    ReplacedImport<struct PlayedCreate, decltype(CreateURLMoniker)> create_{
        "urlmon.dll", "CreateURLMoniker",
        [this](IMoniker*, LPCWSTR url, IMoniker** moniker) { return Create(url, moniker); }};
    ReplacedImport<struct PlayedRegister, decltype(RegisterBindStatusCallback)> register_{
        "urlmon.dll", "RegisterBindStatusCallback",
        [this](IBindCtx*, IBindStatusCallback* callback, IBindStatusCallback**, DWORD) {
            callback_ = callback;
            return S_OK;
        }};
};

} // namespace test_support
