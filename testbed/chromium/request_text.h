// Between the requests of Chromium's protocol and those that a client sees.
#pragma once

#include <string_view>

#include "testbed/chromium/connection.h"
#include "testbed/chromium/page_client.h"

namespace testbed::chromium {

/// Whether it is of http or https: clients see no other requests.
bool IsWeb(std::string_view url);

/// @param paused the parameters of Fetch.requestPaused.
Request RequestFrom(const Json& paused);

/// Parameters of Fetch.continueRequest. Headers are sent along only if they are others than those of the request.
Json ContinueParameters(const Json& paused, const Headers& headers);

} // namespace testbed::chromium
