// The numbers of the runtime's own errors.
#include "error_status.h"

namespace webview2_runtime {

using testbed::chromium::NavigationError;

COREWEBVIEW2_WEB_ERROR_STATUS StatusOf(NavigationError error) {
    switch (error) {
    case NavigationError::Aborted:
        return COREWEBVIEW2_WEB_ERROR_STATUS_OPERATION_CANCELED;
    case NavigationError::CannotConnect:
        return COREWEBVIEW2_WEB_ERROR_STATUS_CANNOT_CONNECT;
    case NavigationError::HostNameNotResolved:
        return COREWEBVIEW2_WEB_ERROR_STATUS_HOST_NAME_NOT_RESOLVED;
    case NavigationError::ServerUnreachable:
        return COREWEBVIEW2_WEB_ERROR_STATUS_ERROR_HTTP_INVALID_SERVER_RESPONSE;
    case NavigationError::ConnectionReset:
        return COREWEBVIEW2_WEB_ERROR_STATUS_CONNECTION_RESET;
    case NavigationError::Disconnected:
        return COREWEBVIEW2_WEB_ERROR_STATUS_DISCONNECTED;
    case NavigationError::Timeout:
        return COREWEBVIEW2_WEB_ERROR_STATUS_TIMEOUT;
    case NavigationError::RedirectFailed:
        return COREWEBVIEW2_WEB_ERROR_STATUS_REDIRECT_FAILED;
    case NavigationError::CertificateCommonNameIncorrect:
        return COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_COMMON_NAME_IS_INCORRECT;
    case NavigationError::CertificateExpired:
        return COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_EXPIRED;
    case NavigationError::CertificateInvalid:
        return COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_IS_INVALID;
    case NavigationError::CertificateRevoked:
        return COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_REVOKED;
    case NavigationError::ValidAuthenticationRequired:
        return COREWEBVIEW2_WEB_ERROR_STATUS_VALID_AUTHENTICATION_CREDENTIALS_REQUIRED;
    case NavigationError::None:
    case NavigationError::Unknown:
    case NavigationError::HttpStatus:
    case NavigationError::RendererCrashed:
        break;
    }
    return COREWEBVIEW2_WEB_ERROR_STATUS_UNKNOWN;
}

} // namespace webview2_runtime
