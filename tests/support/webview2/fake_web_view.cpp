// The fake web view's registrations.
#include "tests/support/webview2/fake_web_view.h"

#include <gtest/gtest.h>

namespace test_support {

void FakeWebViewState::Drop(const std::string& event) {
    const auto found = handlers.find(event);
    if (found != handlers.end()) {
        EXPECT_EQ(found->second.Reset(), 0U) << event << ": its handler is still referenced";
        handlers.erase(found);
    }
}

// The token starts at 100 so that it is not mistaken for a count of the events.
HRESULT FakeWebView::Add(const char* event, IUnknown* handler, EventRegistrationToken* token) {
    const HRESULT result = Called(std::string("add_") + event);
    if (SUCCEEDED(result)) {
        token->value = 100 + ++state_.lastToken;
        state_.tokens[token->value] = event;
        state_.handlers[event] = handler;
    }
    return result;
}

HRESULT FakeWebView::Remove(const char* event, EventRegistrationToken token) {
    const auto registered = state_.tokens.find(token.value);
    const bool ours = registered != state_.tokens.end() && registered->second == event;
    const HRESULT result = Called(std::string("remove_") + event, ours ? "its token" : "another's token");
    if (SUCCEEDED(result)) {
        state_.Drop(event);
    }
    return result;
}

HRESULT FakeWebView::AddHostObjectToScript(LPCWSTR name, VARIANT* object) {
    object->pdispVal->AddRef();
    const bool heldOnce = object->pdispVal->Release() == 1;
    const HRESULT result =
        Called("AddHostObjectToScript", Narrow(name) +
                                            (object->vt == VT_DISPATCH ? " a dispatch object" : " other") +
                                            (heldOnce ? ", held once" : ""));
    if (SUCCEEDED(result)) {
        state_.hostObject = object->pdispVal;
    }
    return result;
}

HRESULT FakeWebView::RemoveHostObjectFromScript(LPCWSTR name) {
    const HRESULT result = Called("RemoveHostObjectFromScript", Narrow(name));
    if (SUCCEEDED(result)) {
        state_.hostObject.Reset();
    }
    return result;
}

HRESULT FakeWebView::AddScriptToExecuteOnDocumentCreated(
    LPCWSTR script, ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler* handler) {
    const HRESULT result = Called("AddScriptToExecuteOnDocumentCreated", Narrow(script));
    if (SUCCEEDED(result)) {
        state_.scriptAdded = handler;
    }
    return result;
}

} // namespace test_support
