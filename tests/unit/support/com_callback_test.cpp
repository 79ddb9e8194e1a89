// COM callback objects: identity, count, and what they do when their target is gone or throws.
#include "support/com_callback.h"

#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include <windows.h>

#include <objbase.h>

#include "WebView2.h"
#include "tests/support/transcript.h"

using Microsoft::WRL::ComPtr;
using test_support::Lines;
using test_support::Record;

namespace kelda {
namespace {

using Handler = ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler;

struct Listener {
    HRESULT OnCompleted(HRESULT result, LPCWSTR /*id*/) {
        Record("OnCompleted " + std::to_string(result));
        return S_FALSE;
    }
    HRESULT RunsOutOfMemory(HRESULT /*result*/, LPCWSTR /*id*/) { throw std::bad_alloc(); }
    HRESULT Throws(HRESULT /*result*/, LPCWSTR /*id*/) { throw std::runtime_error("broken"); }
    HRESULT ThrowsANumber(HRESULT /*result*/, LPCWSTR /*id*/) { throw 7; }
};

class ComCallbackTest : public test_support::TranscriptTest {
  protected:
    ComCallbackTest() : TranscriptTest("ZanWebBrowserEdge") {}

    Listener listener;
    CallbackTarget<Listener> target = std::make_shared<Listener*>(&listener);
};

TEST_F(ComCallbackTest, AnswersItsInterfaceAndIUnknownOnly) {
    const ComPtr<Handler> callback = MakeCallback<Handler>(target, &Listener::OnCompleted);
    for (const IID& iid : {IID_IUnknown, __uuidof(Handler)}) {
        ComPtr<IUnknown> answer;
        EXPECT_EQ(callback->QueryInterface(iid, reinterpret_cast<void**>(answer.GetAddressOf())), S_OK);
        EXPECT_EQ(answer.Get(), callback.Get());
    }
    void* other = &listener;
    EXPECT_EQ(callback->QueryInterface(IID_IDispatch, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(callback->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(ComCallbackTest, StartsWithTheOneReferenceOfItsMaker) {
    ComPtr<Handler> callback = MakeCallback<Handler>(target, &Listener::OnCompleted);
    EXPECT_EQ(callback->AddRef(), 2U);
    EXPECT_EQ(callback->Release(), 1U);
    EXPECT_EQ(target.use_count(), 2);
    EXPECT_EQ(callback.Reset(), 0U);
    EXPECT_EQ(target.use_count(), 1) << "it was not deleted";
}

TEST_F(ComCallbackTest, CallsTheMemberAndAnswersWhatItAnswers) {
    EXPECT_EQ(MakeCallback<Handler>(target, &Listener::OnCompleted)->Invoke(E_ABORT, nullptr), S_FALSE);
    EXPECT_EQ(TakeTranscript(), Lines{"OnCompleted -2147467260"});
}

TEST_F(ComCallbackTest, AnswersQuietlyWhenTheTargetHasStoppedListening) {
    const ComPtr<Handler> callback = MakeCallback<Handler>(target, &Listener::OnCompleted);
    *target = nullptr;
    EXPECT_EQ(callback->Invoke(E_ABORT, nullptr), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(ComCallbackTest, TracesAnExceptionAndAnswersAFailure) {
    EXPECT_EQ(MakeCallback<Handler>(target, &Listener::RunsOutOfMemory)->Invoke(S_OK, nullptr),
              E_OUTOFMEMORY);
    EXPECT_EQ(MakeCallback<Handler>(target, &Listener::Throws)->Invoke(S_OK, nullptr), E_FAIL);
    EXPECT_EQ(MakeCallback<Handler>(target, &Listener::ThrowsANumber)->Invoke(S_OK, nullptr), E_FAIL);
    EXPECT_EQ(TakeTranscript(), (Lines{"[0] Failed: std::bad_alloc error code: -2147024882",
                                       "[0] Failed: broken error code: -2147467259",
                                       "[0] Failed: unknown exception error code: -2147467259"}));
}

} // namespace
} // namespace kelda
