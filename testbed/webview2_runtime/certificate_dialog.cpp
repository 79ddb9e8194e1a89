// The box is not closed with the page: as with those of scripts, somebody has to answer it.
#include "certificate_dialog.h"

#include "testbed/chromium/text.h"

namespace webview2_runtime {

bool ShowCertificateDialog(HWND owner, const Origin& server,
                           const ClientCertificateList::Certificates& certificates) {
    std::wstring text = testbed::chromium::ToUtf16(server.host) + L":" + std::to_wstring(server.port) +
                        L" asks for a certificate. OK sends the first of these, Cancel none.\n";
    for (const auto& certificate : certificates) {
        text += L"\n" + certificate->Subject();
    }
    return MessageBoxW(owner, text.c_str(), L"Select a certificate", MB_OKCANCEL) == IDOK;
}

} // namespace webview2_runtime
