// The folder of a WebView2 runtime of one's own.
#pragma once

#include <string>

namespace kelda {

/// The folder that a variable of the library names in place of the installed runtime.
class BrowserFolder {
  public:
    static BrowserFolder FromEnvironment();

    bool IsGiven() const { return !text_.empty(); }

    /// As the variable has it, UTF-8.
    const std::string& Text() const { return text_; }

    /// As the loader wants it: null stands for the installed runtime. Valid as long as this object.
    const wchar_t* ForRuntime() const { return IsGiven() ? wideText_.c_str() : nullptr; }

  private:
    explicit BrowserFolder(std::string text);

    std::string text_;
    std::wstring wideText_;
};

} // namespace kelda
