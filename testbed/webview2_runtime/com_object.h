// What all objects of the runtime have in common: an interlocked count, being counted themselves, the thread that they
// belong to, and that no exception leaves them. None of it uses a service of COM, so that objects may be released after
// CoUninitialize.
#pragma once

#include <atomic>
#include <new>
#include <utility>

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

namespace webview2_runtime {

/// How many objects of the runtime are alive.
class LiveObject {
  public:
    LiveObject(const LiveObject&) = delete;
    LiveObject& operator=(const LiveObject&) = delete;

    static DWORD Count() { return count; }

  protected:
    LiveObject() { ++count; }
    ~LiveObject() { --count; }

  private:
    static inline std::atomic<DWORD> count = 0;
};

/// What every call but Close answers once the web view is closed.
inline HRESULT ClosedError() {
    return HRESULT_FROM_WIN32(ERROR_INVALID_STATE);
}

/// Runs what must not throw; an exception becomes a failure.
template <typename Body>
HRESULT WithoutExceptions(Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

/// Implements IUnknown on top of `Base` for those of its interfaces that are listed, all of one chain. An object starts
/// with one reference, for whoever made it (`MakeObject`).
template <typename Base, typename... Interfaces>
class ComObject : public Base, private LiveObject {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        if (id != __uuidof(IUnknown) && !((id == __uuidof(Interfaces)) || ...)) {
            return E_NOINTERFACE;
        }
        *object = static_cast<Base*>(this);
        AddRef();
        return S_OK;
    }
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

    /// Runs the body of a method, on the thread that made the object only.
    template <typename Body>
    HRESULT Guarded(Body&& body) const noexcept {
        return GetCurrentThreadId() == thread_ ? WithoutExceptions(body) : RPC_E_WRONG_THREAD;
    }

    /// The body of a method that hands out a value.
    template <typename Value, typename Read>
    HRESULT GuardedGet(Value* value, Read&& read) const noexcept {
        return Guarded([&]() -> HRESULT {
            if (value == nullptr) {
                return E_POINTER;
            }
            *value = read();
            return S_OK;
        });
    }

  private:
    std::atomic<ULONG> references_ = 1;
    DWORD thread_ = GetCurrentThreadId();
};

/// A new object and the only reference to it.
///
/// @throws std::bad_alloc, and what the constructor throws.
template <typename Object, typename... Arguments>
Microsoft::WRL::ComPtr<Object> MakeObject(Arguments&&... arguments) {
    Microsoft::WRL::ComPtr<Object> owner;
    *owner.GetAddressOf() = new Object(std::forward<Arguments>(arguments)...);
    return owner;
}

/// Hands out a reference of its own; `out` must not be null.
template <typename Interface, typename Object>
HRESULT HandOut(const Microsoft::WRL::ComPtr<Object>& object, Interface** out) {
    *out = object.Get();
    (*out)->AddRef();
    return S_OK;
}

} // namespace webview2_runtime
