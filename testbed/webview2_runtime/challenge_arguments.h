// What the handlers of BasicAuthenticationRequested get, and the credentials that they may put.
#pragma once

#include <string>
#include <utility>

#include "com_object.h"
#include "com_text.h"
#include "testbed/chromium/page_client.h"
#include "testbed/chromium/text.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

class BasicAuthenticationResponse
    : public ComObject<webview2::NotImplemented<ICoreWebView2BasicAuthenticationResponse>,
                       ICoreWebView2BasicAuthenticationResponse> {
  public:
    /// Whether the host has put anything, and be it an empty text.
    bool Given() const { return given_; }
    const std::wstring& User() const { return user_; }
    const std::wstring& Password() const { return password_; }

    HRESULT STDMETHODCALLTYPE get_UserName(LPWSTR* userName) override { return Get(user_, userName); }
    HRESULT STDMETHODCALLTYPE put_UserName(LPCWSTR userName) override { return Put(user_, userName); }
    HRESULT STDMETHODCALLTYPE get_Password(LPWSTR* password) override { return Get(password_, password); }
    HRESULT STDMETHODCALLTYPE put_Password(LPCWSTR password) override { return Put(password_, password); }

  private:
    HRESULT Get(const std::wstring& member, LPWSTR* text) const {
        return Guarded([&] { return CopyOut(member, text); });
    }
    HRESULT Put(std::wstring& member, LPCWSTR text) {
        return Guarded([&]() -> HRESULT {
            if (text == nullptr) {
                return E_POINTER;
            }
            member = text;
            given_ = true;
            return S_OK;
        });
    }

    std::wstring user_;
    std::wstring password_;
    bool given_ = false;
};

class BasicAuthenticationArguments
    : public ComObject<webview2::NotImplemented<ICoreWebView2BasicAuthenticationRequestedEventArgs>,
                       ICoreWebView2BasicAuthenticationRequestedEventArgs> {
  public:
    explicit BasicAuthenticationArguments(testbed::chromium::AuthenticationChallenge challenge)
        : challenge_(std::move(challenge)) {}

    /// What the handlers have made of it. Nobody is asked for what they have not put: that counts as cancelled.
    testbed::chromium::AuthenticationAnswer Answer() const {
        if (cancelled_ || !response_->Given()) {
            return {};
        }
        return {false, testbed::chromium::ToUtf8(response_->User()),
                testbed::chromium::ToUtf8(response_->Password())};
    }

    HRESULT STDMETHODCALLTYPE get_Uri(LPWSTR* uri) override {
        return Guarded([&] { return CopyOut(testbed::chromium::ToUtf16(challenge_.url), uri); });
    }
    HRESULT STDMETHODCALLTYPE get_Challenge(LPWSTR* challenge) override {
        return Guarded([&] { return CopyOut(testbed::chromium::ToUtf16(challenge_.challenge), challenge); });
    }
    HRESULT STDMETHODCALLTYPE get_Response(ICoreWebView2BasicAuthenticationResponse** response) override {
        return Guarded(
            [&]() -> HRESULT { return response == nullptr ? E_POINTER : HandOut(response_, response); });
    }
    HRESULT STDMETHODCALLTYPE get_Cancel(BOOL* cancel) override {
        return GuardedGet(cancel, [&] { return cancelled_ ? TRUE : FALSE; });
    }
    HRESULT STDMETHODCALLTYPE put_Cancel(BOOL cancel) override {
        return Guarded([&] {
            cancelled_ = cancel != FALSE;
            return S_OK;
        });
    }

  private:
    testbed::chromium::AuthenticationChallenge challenge_;
    Microsoft::WRL::ComPtr<BasicAuthenticationResponse> response_ = MakeObject<BasicAuthenticationResponse>();
    bool cancelled_ = false;
};

} // namespace webview2_runtime
