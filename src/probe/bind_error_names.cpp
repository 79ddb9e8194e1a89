// The table of URL-moniker errors.
#include "probe/bind_error_names.h"

#include <algorithm>
#include <array>

namespace kelda {
namespace {

struct BindErrorName {
    DWORD code;
    const char* name;
};

// Two codes have two names each in the platform's headers. Both rows are kept in a fixed order: the first name of a code
// is the one that traces show, the second is never reached.
constexpr std::array<BindErrorName, 31> kBindErrorNames{{
    {0x800C0009, "INET_E_AUTHENTICATION_REQUIRED"},
    {0x800C0004, "INET_E_CANNOT_CONNECT"},
    {0x800C0010, "INET_E_CANNOT_INSTANTIATE_OBJECT"},
    {0x800C000F, "INET_E_CANNOT_LOAD_DATA"},
    {0x800C0016, "INET_E_CANNOT_LOCK_REQUEST"},
    {0x800C0300, "INET_E_CANNOT_REPLACE_SFP_FILE"},
    {0x800C0100, "INET_E_CODE_DOWNLOAD_DECLINED"},
    {0x800C0400, "INET_E_CODE_INSTALL_SUPPRESSED"},
    {0x800C0500, "INET_E_CODE_INSTALL_BLOCKED_BY_HASH_POLICY"},
    {0x800C000B, "INET_E_CONNECTION_TIMEOUT"},
    {0x800C0007, "INET_E_DATA_NOT_AVAILABLE"},
    {0x800C0011, "INET_E_DEFAULT_ACTION"},
    {0x800C0008, "INET_E_DOWNLOAD_FAILURE"},
    {0x800C0019, "INET_E_INVALID_CERTIFICATE"},
    {0x800C000C, "INET_E_INVALID_REQUEST"},
    {0x800C0002, "INET_E_INVALID_URL"},
    {0x800C0003, "INET_E_NO_SESSION"},
    {0x800C000A, "INET_E_NO_VALID_MEDIA"},
    {0x800C0006, "INET_E_OBJECT_NOT_FOUND"},
    {0x800C0013, "INET_E_QUERYOPTION_UNKNOWN"},
    {0x800C0014, "INET_E_REDIRECT_FAILED"},
    {0x800C0015, "INET_E_REDIRECT_TO_DIR"},
    {0x800C0014, "INET_E_REDIRECTING"},
    {0x800C0005, "INET_E_RESOURCE_NOT_FOUND"},
    {0x800C0200, "INET_E_RESULT_DISPATCHED"},
    {0x800C000E, "INET_E_SECURITY_PROBLEM"},
    {0x800C0018, "INET_E_TERMINATED_BIND"},
    {0x800C000D, "INET_E_UNKNOWN_PROTOCOL"},
    {0x800C0011, "INET_E_USE_DEFAULT_PROTOCOLHANDLER"},
    {0x800C0012, "INET_E_USE_DEFAULT_SETTING"},
    {0x800C0017, "INET_E_USE_EXTEND_BINDING"},
}};

} // namespace

const char* FindBindErrorName(HRESULT code) noexcept {
    const auto row = std::find_if(kBindErrorNames.begin(), kBindErrorNames.end(), [code](const auto& entry) {
        return entry.code == static_cast<DWORD>(code);
    });
    return row == kBindErrorNames.end() ? nullptr : row->name;
}

} // namespace kelda
