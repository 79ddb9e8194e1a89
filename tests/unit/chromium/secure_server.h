// A TLS server on the loopback interface whose certificate nobody has signed but itself.
#pragma once

#include <string>

#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {

/// A program of the machine below Wine. It answers every request with a page, and closes the connection then.
class SecureServer {
  public:
    /// Waits until it listens; `Url` is empty if that does not happen. No other such server of this process has had the port:
    /// browsers remember certificates by it.
    SecureServer();
    ~SecureServer();
    SecureServer(const SecureServer&) = delete;
    SecureServer& operator=(const SecureServer&) = delete;

    /// "https://127.0.0.1:PORT" and the path.
    std::string Url(const std::string& path = "/") const;

  private:
    void Start();
    void Stop();
    std::string ReadAddress() const;

    ProfileFolder folder_;
    std::string address_;
};

} // namespace chromium_test
