// The call, and its answer unpacked and freed.
#include "prompt_call.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <objbase.h>

#include "testbed/windows_gaps/windows_gaps.h"

namespace windows_gaps_test {
namespace {

/// A path in the folder for temporary files that no other file of this program has.
std::wstring NewPath() {
    static int count = 0;
    const std::string name =
        "prompt_test_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++count) + ".json";
    return (std::filesystem::temp_directory_path() / name).wstring();
}

} // namespace

void PromptCall::Prefill(std::wstring user, std::wstring secret) {
    DWORD size = 0;
    CredPackAuthenticationBufferW(0, user.data(), secret.data(), nullptr, &size);
    authBuffer.resize(size);
    ASSERT_TRUE(CredPackAuthenticationBufferW(0, user.data(), secret.data(), authBuffer.data(), &size));
}

void PromptCall::Run() {
    CREDUI_INFOW info = {structSize, parent, message.c_str(), caption.c_str(), nullptr};
    void* packed = nullptr;
    ULONG packedSize = 0;
    error = CredUIPromptForWindowsCredentialsW(
        &info, authError, &authPackage, authBuffer.empty() ? nullptr : authBuffer.data(),
        static_cast<ULONG>(authBuffer.size()), &packed, &packedSize, &save, flags);
    handedOut = packed != nullptr;
    if (!handedOut) {
        return;
    }
    std::array<wchar_t, CREDUI_MAX_USERNAME_LENGTH + 1> user{};
    std::array<wchar_t, CREDUI_MAX_PASSWORD_LENGTH + 1> secret{};
    auto userSize = static_cast<DWORD>(user.size());
    auto secretSize = static_cast<DWORD>(secret.size());
    const BOOL unpacked = CredUnPackAuthenticationBufferW(0, packed, packedSize, user.data(), &userSize,
                                                          nullptr, nullptr, secret.data(), &secretSize);
    unpackError = unpacked != FALSE ? 0 : GetLastError();
    CoTaskMemFree(packed);
    userName = user.data();
    password = secret.data();
}

NamedFile::NamedFile(const wchar_t* variable) : variable_(variable), path_(NewPath()) {
    SetEnvironmentVariableW(variable_.c_str(), path_.c_str());
}

NamedFile::~NamedFile() {
    SetEnvironmentVariableW(variable_.c_str(), nullptr);
    DeleteFileW(path_.c_str());
}

void NamedFile::Write(const std::string& text) const {
    std::ofstream(std::filesystem::path(path_), std::ios::binary) << text;
}

std::string NamedFile::Read() const {
    std::ifstream file(std::filesystem::path(path_), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void PromptTest::SetUp() {
    ASSERT_TRUE(SupplyWindowsGaps(GetModuleHandleW(nullptr)));
}

} // namespace windows_gaps_test
