// The command of the TLS library that every such machine has. It says where it listens, and is told a file to say it in.
#include "tests/unit/chromium/secure_server.h"

#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>

#include "testbed/chromium/launch.h"
#include "testbed/chromium/text.h"
#include "tests/support/native_process.h"

namespace chromium_test {
namespace {

constexpr const wchar_t* kAddressFile = L"address.txt";

// The folder is the first argument. In the end it is killed; the time is for when nobody does.
constexpr const wchar_t* kScript =
    L"openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=untrusted"
    L" -addext subjectAltName=IP:127.0.0.1 -keyout $1/key.pem -out $1/certificate.pem 2>$1/errors.txt &&"
    L" exec timeout 120 openssl s_server -accept 127.0.0.1:0 -www -key $1/key.pem -cert $1/certificate.pem"
    L" >$1/address.txt 2>$1/errors.txt </dev/null";

} // namespace

SecureServer::SecureServer() {
    static std::set<std::string> used;
    for (Start(); !address_.empty() && !used.insert(address_).second; Start()) {
        Stop();
    }
}

SecureServer::~SecureServer() {
    Stop();
}

void SecureServer::Start() {
    DWORD error = ERROR_SUCCESS;
    const std::wstring folder = ToUtf16(NativeFolder(folder_.Path(), error));
    test_support::RunNative(L"/bin/sh", std::wstring(L"-c \"") + kScript + L"\" sh \"" + folder + L"\"");
    PumpUntil([this] { return !(address_ = ReadAddress()).empty(); });
}

void SecureServer::Stop() {
    for (const int process : folder_.Processes()) {
        test_support::KillNative(process);
    }
    PumpUntil([this] { return folder_.Processes().empty(); });
    std::error_code ignored;
    std::filesystem::remove(std::filesystem::path(folder_.Path()) / kAddressFile, ignored);
}

std::string SecureServer::Url(const std::string& path) const {
    return address_.empty() ? address_ : "https://" + address_ + path;
}

/// Empty until it is there.
std::string SecureServer::ReadAddress() const {
    constexpr std::string_view kWord = "ACCEPT ";
    std::ifstream file(std::filesystem::path(folder_.Path()) / kAddressFile);
    std::string line;
    while (std::getline(file, line)) {
        if (line.starts_with(kWord) && !file.eof()) {
            return line.substr(kWord.size());
        }
    }
    return {};
}

} // namespace chromium_test
