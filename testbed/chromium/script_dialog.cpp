// Message boxes for alert, confirm, prompt and the question before leaving.
#include "testbed/chromium/script_dialog.h"

#include "testbed/chromium/text.h"

namespace testbed::chromium {

Json ShowScriptDialog(const Json& opening, HWND owner) {
    const auto type = opening.at("type").get<std::string>();
    const bool leaving = type == "beforeunload";
    const std::wstring message = leaving ? L"Leave this page?" : ToUtf16(opening.value("message", ""));
    const int answer = MessageBoxW(owner, message.c_str(), ToUtf16(opening.value("url", "")).c_str(),
                                   (type == "alert" ? MB_OK : MB_OKCANCEL) |
                                       (leaving || type == "confirm" ? MB_ICONQUESTION : MB_ICONINFORMATION));
    return {{"accept", answer == IDOK}, {"promptText", opening.value("defaultPrompt", "")}};
}

Json DismissScriptDialog(const Json& opening) {
    return {{"accept", opening.at("type") == "beforeunload"}};
}

} // namespace testbed::chromium
