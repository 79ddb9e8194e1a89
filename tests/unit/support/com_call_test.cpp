// Calls on objects that may be missing, or that their owner lets go of meanwhile.
#include "support/com_call.h"

#include <gtest/gtest.h>
#include <objidl.h>

#include "tests/support/fake_object.h"
#include "tests/support/transcript.h"

using Microsoft::WRL::ComPtr;
using test_support::FakeObject;
using test_support::Lines;
using test_support::MakeFake;
using test_support::Record;

namespace kelda {
namespace {

/// Runs a test's code in its only method.
class Interruptible final : public FakeObject<IOleWindow> {
  public:
    Interruptible() : FakeObject("object") {}

    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override {
        Record("GetWindow");
        *window = nullptr;
        if (meanwhile) {
            meanwhile();
        }
        Record("GetWindow ends");
        return S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL /*enter*/) override { return E_NOTIMPL; }

    std::function<void()> meanwhile;
};

using ComCall = test_support::TranscriptTest;

TEST_F(ComCall, PassesTheArgumentsAndTheAnswer) {
    const ComPtr<Interruptible> object = MakeFake<Interruptible>();
    auto window = reinterpret_cast<HWND>(0x4711);
    EXPECT_EQ(CallOn(object, &IOleWindow::GetWindow, &window), S_FALSE);
    EXPECT_EQ(window, nullptr);
}

TEST_F(ComCall, OnNothingIsAFailureAndTouchesNothing) {
    const ComPtr<IOleWindow> nothing;
    auto window = reinterpret_cast<HWND>(0x4711);
    EXPECT_EQ(CallOn(nothing, &IOleWindow::GetWindow, &window), E_POINTER);
    EXPECT_EQ(window, reinterpret_cast<HWND>(0x4711));
}

TEST_F(ComCall, KeepsTheObjectUntilItsMethodHasEnded) {
    ComPtr<Interruptible> object = MakeFake<Interruptible>();
    object->meanwhile = [&object] { object.Reset(); };
    HWND window = nullptr;
    CallOn(object, &IOleWindow::GetWindow, &window);
    EXPECT_EQ(TakeTranscript(), (Lines{"GetWindow", "GetWindow ends", "object gone"}));
}

TEST_F(ComCall, AQueryLetsGoOfWhatWasHeldWhateverComesOfIt) {
    ComPtr<IOleWindow> held = MakeFake<Interruptible>();
    EXPECT_EQ(Query(ComPtr<IUnknown>(), held), E_POINTER);
    EXPECT_EQ(held, nullptr);
    EXPECT_EQ(TakeTranscript(), Lines{"object gone"});

    const ComPtr<IOleWindow> other = MakeFake<Interruptible>();
    EXPECT_EQ(Query(other, held), S_OK);
    EXPECT_EQ(held.Get(), other.Get());
    ComPtr<IStream> stream;
    EXPECT_EQ(Query(other, stream), E_NOINTERFACE);
    EXPECT_EQ(stream, nullptr);
}

} // namespace
} // namespace kelda
