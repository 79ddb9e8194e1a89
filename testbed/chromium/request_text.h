// Between the requests of Chromium's protocol and those that a client sees.
#pragma once

#include "testbed/chromium/connection.h"
#include "testbed/chromium/page_client.h"

namespace testbed::chromium {

/// @param paused the parameters of Fetch.requestPaused.
Request RequestFrom(const Json& paused);

/// Puts headers in place of those of the same name.
void Replace(Headers& headers, const Headers& others);

/// Parameters of Fetch.continueRequest. Headers are sent along only if they are others than those of the request.
Json ContinueParameters(const Json& paused, const Headers& headers);

} // namespace testbed::chromium
