// The runtime's own question for a client certificate, as a message box.
#pragma once

#include <windows.h>

#include "client_certificate_requests.h"
#include "client_certificates.h"

namespace webview2_runtime {

/// Waits for the answer in a message loop.
///
/// @param owner a child stands for its top-level window; may be null.
/// @param certificates at least one.
/// @return whether the first one is to be sent.
bool ShowCertificateDialog(HWND owner, const Origin& server,
                           const ClientCertificateList::Certificates& certificates);

} // namespace webview2_runtime
