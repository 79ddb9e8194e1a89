// Not counted among the live objects: it is there for as long as the control is supplied.
#include "class_object.h"

#include <atomic>
#include <utility>

#include "com_object.h"
#include "control.h"

namespace legacy_control {
namespace {

class ClassObject final : public IClassFactory {
  public:
    explicit ClassObject(std::function<void()> gone) : gone_(std::move(gone)) {}
    ClassObject(const ClassObject&) = delete;
    ClassObject& operator=(const ClassObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        return Answer<IClassFactory, IUnknown>(this, id, object) ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            gone_();
            delete this;
        }
        return left;
    }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        return WithoutExceptions([&]() -> HRESULT {
            if (object == nullptr) {
                return E_POINTER;
            }
            *object = nullptr;
            return outer == nullptr ? MakeObject<Control>()->QueryInterface(id, object)
                                    : CLASS_E_NOAGGREGATION;
        });
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

  private:
    virtual ~ClassObject() = default;

    std::atomic<ULONG> references_ = 1;
    std::function<void()> gone_;
};

} // namespace

Microsoft::WRL::ComPtr<IClassFactory> MakeClassObject(std::function<void()> gone) {
    return MakeObject<ClassObject>(std::move(gone));
}

} // namespace legacy_control
