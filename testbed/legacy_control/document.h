// What the control hands out as a page's document: as much as a host needs to read a script error.
#pragma once

#include <string>

#include <windows.h>

#include <mshtml.h>
#include <wrl/client.h>

namespace legacy_control {

/// Texts are UTF-8.
struct ScriptError {
    std::string message;
    std::string url;
    LONG line = 0;
    LONG character = 0;
    LONG code = 0;
};

/// A document as it was when it was asked for. Its window has no event.
///
/// @throws std::bad_alloc
Microsoft::WRL::ComPtr<IHTMLDocument2> MakeDocument(const std::string& url, const std::string& title);

/// One whose window's event is an error: it answers to errorUrl, errorMessage, errorCode, errorLine and errorCharacter.
///
/// @throws std::bad_alloc
Microsoft::WRL::ComPtr<IHTMLDocument2> MakeDocument(const std::string& url, const std::string& title,
                                                    const ScriptError& error);

} // namespace legacy_control
