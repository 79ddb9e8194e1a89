// The connection point of the control's events, and those who listen.
#pragma once

#include <map>
#include <vector>

#include <windows.h>

#include <ocidl.h>
#include <wrl/client.h>

namespace legacy_control {

/// A part of the control that lives with it: its references are the control's.
class EventSource final : public IConnectionPoint {
  public:
    explicit EventSource(IConnectionPointContainer& control) : control_(control) {}
    virtual ~EventSource() = default;
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;

    /// Calls everybody who listens, until it is silenced. `arguments` are in the order of the event's declaration.
    void Raise(DISPID event, std::vector<VARIANTARG> arguments);

    /// From now on nobody is called, not even by an event that is being raised.
    void Silence() { silent_ = true; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return control_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return control_.Release(); }

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* id) override;
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override;

  private:
    IConnectionPointContainer& control_;
    std::map<DWORD, Microsoft::WRL::ComPtr<IDispatch>> sinks_;
    DWORD lastCookie_ = 0;
    bool silent_ = false;
};

} // namespace legacy_control
