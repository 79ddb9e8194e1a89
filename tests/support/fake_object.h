// What every COM fake has in common: a count, and an entry in the transcript when it goes.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

#include "tests/support/transcript.h"

namespace test_support {

/// The counting of a fake COM object that starts with one reference, for whoever made it (see `MakeFake`). Records
/// "NAME gone" when the last reference is released. Subclasses answer `QueryInterface`.
template <typename... Interfaces>
class CountedFake : public Interfaces... {
  public:
    explicit CountedFake(std::string name) : name_(std::move(name)) {}
    virtual ~CountedFake() = default;
    CountedFake(const CountedFake&) = delete;
    CountedFake& operator=(const CountedFake&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG count = --count_;
        if (recordsReleases) {
            Record(name_ + " released");
        }
        if (count == 0) {
            Record(name_ + " gone");
            if (onGone) {
                onGone();
            }
            delete this;
        }
        return count;
    }

    ULONG Count() const { return count_; }
    const std::string& Name() const { return name_; }

    /// What else happens when the last reference is released.
    std::function<void()> onGone;

    /// Switched on where a test is about the order in which references are given back.
    bool recordsReleases = false;

  private:
    std::string name_;
    ULONG count_ = 1;
    LiveFake live_;
};

/// A fake that answers `IUnknown` and the first interface; subclasses add others.
template <typename First, typename... Others>
class FakeObject : public CountedFake<First, Others...> {
  public:
    using CountedFake<First, Others...>::CountedFake;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid == IID_IUnknown || iid == __uuidof(First)) {
            *object = static_cast<First*>(this);
            this->AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
};

/// A new fake, owned by the pointer alone. Without `ComPtr::Attach`: mingw-w64's takes a reference of its own.
template <typename Fake, typename... Arguments>
Microsoft::WRL::ComPtr<Fake> MakeFake(Arguments&&... arguments) {
    auto* const fake = new Fake(std::forward<Arguments>(arguments)...);
    Microsoft::WRL::ComPtr<Fake> owner(fake);
    fake->Release();
    return owner;
}

} // namespace test_support
