// The names that traces give to URL-moniker errors.
#include "probe/bind_error_names.h"

#include <array>
#include <string_view>

#include <gtest/gtest.h>

namespace kelda {
namespace {

struct Row {
    unsigned long code;
    const char* name;
};

// Written out independently of the table under test, by code.
constexpr std::array<Row, 29> kNames{{
    {0x800C0002UL, "INET_E_INVALID_URL"},
    {0x800C0003UL, "INET_E_NO_SESSION"},
    {0x800C0004UL, "INET_E_CANNOT_CONNECT"},
    {0x800C0005UL, "INET_E_RESOURCE_NOT_FOUND"},
    {0x800C0006UL, "INET_E_OBJECT_NOT_FOUND"},
    {0x800C0007UL, "INET_E_DATA_NOT_AVAILABLE"},
    {0x800C0008UL, "INET_E_DOWNLOAD_FAILURE"},
    {0x800C0009UL, "INET_E_AUTHENTICATION_REQUIRED"},
    {0x800C000AUL, "INET_E_NO_VALID_MEDIA"},
    {0x800C000BUL, "INET_E_CONNECTION_TIMEOUT"},
    {0x800C000CUL, "INET_E_INVALID_REQUEST"},
    {0x800C000DUL, "INET_E_UNKNOWN_PROTOCOL"},
    {0x800C000EUL, "INET_E_SECURITY_PROBLEM"},
    {0x800C000FUL, "INET_E_CANNOT_LOAD_DATA"},
    {0x800C0010UL, "INET_E_CANNOT_INSTANTIATE_OBJECT"},
    {0x800C0011UL, "INET_E_DEFAULT_ACTION"},
    {0x800C0012UL, "INET_E_USE_DEFAULT_SETTING"},
    {0x800C0013UL, "INET_E_QUERYOPTION_UNKNOWN"},
    {0x800C0014UL, "INET_E_REDIRECT_FAILED"},
    {0x800C0015UL, "INET_E_REDIRECT_TO_DIR"},
    {0x800C0016UL, "INET_E_CANNOT_LOCK_REQUEST"},
    {0x800C0017UL, "INET_E_USE_EXTEND_BINDING"},
    {0x800C0018UL, "INET_E_TERMINATED_BIND"},
    {0x800C0019UL, "INET_E_INVALID_CERTIFICATE"},
    {0x800C0100UL, "INET_E_CODE_DOWNLOAD_DECLINED"},
    {0x800C0200UL, "INET_E_RESULT_DISPATCHED"},
    {0x800C0300UL, "INET_E_CANNOT_REPLACE_SFP_FILE"},
    {0x800C0400UL, "INET_E_CODE_INSTALL_SUPPRESSED"},
    {0x800C0500UL, "INET_E_CODE_INSTALL_BLOCKED_BY_HASH_POLICY"},
}};

TEST(BindErrorNames, EveryCodeHasItsName) {
    for (const Row& row : kNames) {
        const char* const name = FindBindErrorName(static_cast<HRESULT>(row.code));
        ASSERT_NE(name, nullptr) << row.name;
        EXPECT_STREQ(name, row.name);
    }
}

TEST(BindErrorNames, TheTwoShadowedNamesAreNeverGiven) {
    for (unsigned long code = 0x800C0000UL; code <= 0x800C0600UL; ++code) {
        const char* const name = FindBindErrorName(static_cast<HRESULT>(code));
        if (name != nullptr) {
            EXPECT_NE(std::string_view(name), "INET_E_REDIRECTING");
            EXPECT_NE(std::string_view(name), "INET_E_USE_DEFAULT_PROTOCOLHANDLER");
        }
    }
}

TEST(BindErrorNames, OtherCodesHaveNone) {
    for (const unsigned long code : {0UL, 1UL, 0x80004004UL, 0x80072EE7UL, 0x800C0001UL, 0x800C001AUL}) {
        EXPECT_EQ(FindBindErrorName(static_cast<HRESULT>(code)), nullptr) << code;
    }
}

} // namespace
} // namespace kelda
