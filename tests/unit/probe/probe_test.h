// What the tests of the probe share: a callback that records, and a stream to try.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "probe/authentication_stream.h"
#include "probe/server_authentication_callback.h"
#include "tests/support/transcript.h"

namespace kelda {

class RecordingCallback final : public ServerAuthenticationCallback {
  public:
    void SessionAuthenticationComplete(int status) override {
        test_support::Record("SessionAuthenticationComplete " + std::to_string(status));
    }
    HWND GetParentWindow() override {
        test_support::Record("GetParentWindow");
        return reinterpret_cast<HWND>(0x4711);
    }
};

/// A host whose side of the callbacks breaks down.
template <typename Exception>
class ThrowingCallback final : public ServerAuthenticationCallback {
  public:
    explicit ThrowingCallback(Exception exception) : exception_(std::move(exception)) {}
    void SessionAuthenticationComplete(int /*status*/) override { throw exception_; }
    HWND GetParentWindow() override { throw exception_; }

  private:
    Exception exception_;
};

/// A test with a stream that is not bound to anything; its count is 1.
class AuthenticationStreamTest : public test_support::TranscriptTest {
  protected:
    RecordingCallback callback;
    std::unique_ptr<AuthenticationStream> stream =
        std::make_unique<AuthenticationStream>(callback, L"Log in", L"Caption", "http://server/");
};

} // namespace kelda
