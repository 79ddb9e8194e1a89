// Server address and path put together.
#include "support/target_address.h"

#include <string>

namespace kelda {
namespace {

// One has a leading slash and the other has none, on purpose.
constexpr const char* kLoginPage = "/qxcore/jsp/qvs/vislogon.jsp";
constexpr const char* kAccessCheck = "ARPublish/veltauth/check_authenticated_access.txt";

} // namespace

du::Symbol TargetAddress(const du::Symbol& serverUrl, int checkMode) {
    const std::string address =
        std::string(serverUrl.safe_c_str()) + (checkMode != 0 ? kAccessCheck : kLoginPage);
    return address.c_str();
}

} // namespace kelda
