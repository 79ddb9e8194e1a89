// What the COM objects of this library have in common: an interlocked count, and being counted themselves.
#pragma once

#include <atomic>

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

namespace windows_gaps {

/// How many objects are alive.
class LiveObject {
  public:
    LiveObject(const LiveObject&) = delete;
    LiveObject& operator=(const LiveObject&) = delete;

    static LONG Count() { return count; }

  protected:
    LiveObject() { ++count; }
    ~LiveObject() { --count; }

  private:
    static inline std::atomic<LONG> count = 0;
};

/// @return the only owner of a reference that the caller had. (`ComPtr::Attach` of mingw-w64 10 takes another one.)
template <typename Interface>
Microsoft::WRL::ComPtr<Interface> TakeOver(Interface* object) {
    Microsoft::WRL::ComPtr<Interface> owner;
    *owner.GetAddressOf() = object;
    return owner;
}

/// A counted object that starts with one reference, for whoever made it (`TakeOver`).
template <typename... Interfaces>
class ComObject : public Interfaces..., private LiveObject {
  public:
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this;
        }
        return left;
    }

  protected:
    ComObject() = default;
    virtual ~ComObject() = default;

  private:
    std::atomic<ULONG> references_ = 1;
};

} // namespace windows_gaps
