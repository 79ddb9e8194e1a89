// A call of the credential prompt as this program imports it, and the files that scripts and logs are kept in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>
#include <wincred.h>

namespace windows_gaps_test {

/// What a call passes, and what has come of it.
struct PromptCall {
    std::wstring caption = L"A caption";
    std::wstring message = L"A message";
    HWND parent = nullptr;
    DWORD structSize = sizeof(CREDUI_INFOW);
    DWORD authError = 0;
    ULONG authPackage = 0;
    std::vector<std::uint8_t> authBuffer;
    DWORD flags = CREDUIWIN_GENERIC | CREDUIWIN_CHECKBOX;
    BOOL save = FALSE;

    DWORD error = 0;
    bool handedOut = false;
    DWORD unpackError = 0;
    std::wstring userName;
    std::wstring password;

    /// Pre-fills the prompt.
    void Prefill(std::wstring user, std::wstring secret);

    void Run();
};

/// A file of the temporary folder that an environment variable names, both gone afterwards.
class NamedFile {
  public:
    /// The file does not exist yet.
    explicit NamedFile(const wchar_t* variable);
    ~NamedFile();
    NamedFile(const NamedFile&) = delete;
    NamedFile& operator=(const NamedFile&) = delete;

    void Write(const std::string& text) const;
    std::string Read() const;

  private:
    std::wstring variable_;
    std::wstring path_;
};

class PromptTest : public ::testing::Test {
  protected:
    void SetUp() override;
};

} // namespace windows_gaps_test
