// COM callback objects that call a member function, and that outlive their target without harm.
#pragma once

#include <memory>
#include <new>
#include <utility>

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

#include "support/com_boundary.h"
#include "support/failed_call.h"

namespace kelda {

/// What callbacks know of their target: it is emptied when the target has stopped listening, for good.
template <typename Target>
using CallbackTarget = std::shared_ptr<Target*>;

/// Implements a COM interface whose only method is `Invoke` by calling `member` of the target. Once the target has
/// stopped listening it answers S_OK and does nothing: late completions are normal. An exception ends here, in the
/// trace. Until its last release it keeps what it was made with. Single-threaded: the count is a plain integer.
template <typename Interface, typename Target, typename... Parameters>
class ComCallback final : public Interface {
  public:
    using Member = HRESULT (Target::*)(Parameters...);

    ComCallback(CallbackTarget<Target> target, Member member, std::shared_ptr<const void> kept)
        : target_(std::move(target)), member_(member), kept_(std::move(kept)) {}
    virtual ~ComCallback() = default;
    ComCallback(const ComCallback&) = delete;
    ComCallback& operator=(const ComCallback&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        if (iid != IID_IUnknown && iid != __uuidof(Interface)) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG count = --count_;
        if (count == 0) {
            delete this;
        }
        return count;
    }

    HRESULT STDMETHODCALLTYPE Invoke(Parameters... parameters) override {
        return AtComBoundary(
            [&] {
                Target* const target = *target_;
                return target != nullptr ? (target->*member_)(parameters...) : S_OK;
            },
            TraceException);
    }

  private:
    CallbackTarget<Target> target_;
    Member member_;
    std::shared_ptr<const void> kept_;
    ULONG count_ = 1;
};

/// A callback object that calls `member`; null when memory runs out.
/// @param kept  Lives at least as long as the callback object.
template <typename Interface, typename Target, typename... Parameters>
Microsoft::WRL::ComPtr<Interface> MakeCallback(const CallbackTarget<Target>& target,
                                               HRESULT (Target::*member)(Parameters...),
                                               std::shared_ptr<const void> kept = nullptr) {
    Microsoft::WRL::ComPtr<Interface> callback;
    *callback.GetAddressOf() =
        new (std::nothrow) ComCallback<Interface, Target, Parameters...>(target, member, std::move(kept));
    return callback; // with the reference that the object was made with
}

} // namespace kelda
