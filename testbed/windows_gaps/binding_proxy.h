// The `IBinding` that a caller gets: it stays the same over the attempts that one bind takes.
#pragma once

#include <urlmon.h>
#include <wrl/client.h>

#include "com_object.h"

namespace windows_gaps {

/// Passes everything on to the binding of the current attempt, so it answers for other interfaces (the HTTP side among
/// them) just when that one does. Belongs to the thread of the bind, like any binding.
class BindingProxy final : public ComObject<IBinding> {
  public:
    /// The binding of the attempt that begins.
    void Follow(IBinding* attempt) { attempt_ = attempt; }

    /// Ends the current attempt; the caller did not ask for it.
    void AbortAttempt() { attempt_->Abort(); }

    /// From now on `GetBindResult` reports this failure.
    void ReportFailure(HRESULT failure) { failure_ = failure; }

    /// Whether the caller has ended the bind.
    bool Aborted() const { return aborted_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    HRESULT STDMETHODCALLTYPE Abort() override;
    HRESULT STDMETHODCALLTYPE Suspend() override { return attempt_->Suspend(); }
    HRESULT STDMETHODCALLTYPE Resume() override { return attempt_->Resume(); }
    HRESULT STDMETHODCALLTYPE SetPriority(LONG priority) override { return attempt_->SetPriority(priority); }
    HRESULT STDMETHODCALLTYPE GetPriority(LONG* priority) override { return attempt_->GetPriority(priority); }
    HRESULT STDMETHODCALLTYPE GetBindResult(CLSID* protocol, DWORD* result, LPOLESTR* text,
                                            DWORD* reserved) override;

  private:
    Microsoft::WRL::ComPtr<IBinding> attempt_;
    HRESULT failure_ = S_OK;
    bool aborted_ = false;
};

} // namespace windows_gaps
