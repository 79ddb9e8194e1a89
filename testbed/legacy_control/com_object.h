// What the COM objects of this library have in common: a count, being counted themselves, and that no exception leaves them.
#pragma once

#include <atomic>
#include <new>
#include <utility>

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

namespace legacy_control {

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

/// Counts references for an object of several interfaces. It starts with one, for whoever made it (`MakeObject`).
template <typename... Interfaces>
class ComObject : public Interfaces..., private LiveObject {
  public:
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            // Whoever is released on the way out may take references, and give them back.
            references_ = 1;
            OnLastRelease();
            delete this;
        }
        return left;
    }

  protected:
    ComObject() = default;
    virtual ~ComObject() = default;

    /// The object is still whole.
    virtual void OnLastRelease() {}

  private:
    std::atomic<ULONG> references_ = 1;
};

/// Answers a QueryInterface for one interface and those that it is derived from.
///
/// @return whether it was asked for one of these; `out` must not be null.
template <typename Interface, typename... Bases, typename Object>
bool Answer(Object* object, REFIID id, void** out) {
    if (id != __uuidof(Interface) && !((id == __uuidof(Bases)) || ...)) {
        return false;
    }
    *out = static_cast<Interface*>(object);
    object->AddRef();
    return true;
}

/// Implements IUnknown on top of `Base` for its one interface and those that this is derived from.
template <typename Base, typename... Interfaces>
class SimpleObject : public ComObject<Base> {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        return Answer<IUnknown, Interfaces...>(static_cast<Base*>(this), id, object) ? S_OK : E_NOINTERFACE;
    }
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

/// @return the interface of an object, or null.
template <typename Interface>
Microsoft::WRL::ComPtr<Interface> Query(IUnknown* object) {
    Microsoft::WRL::ComPtr<Interface> found;
    if (object == nullptr ||
        FAILED(object->QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(found.GetAddressOf())))) {
        return nullptr;
    }
    return found;
}

} // namespace legacy_control
