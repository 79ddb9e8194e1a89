// Headers: lists of them in the words of Chromium's protocol.
#pragma once

#include <string_view>

#include "testbed/chromium/connection.h"
#include "testbed/chromium/page_client.h"

namespace testbed::chromium {

/// Those of an object that has a member for each.
Headers HeadersFrom(const Json& object);

/// Those that went over the wire, from an object that has all of them, but sorted, each name once, and each byte of a value
/// as a character of its own. A value that was UTF-8 comes out as that, any other one as Latin text.
///
/// @param text gives the order: the lines as Chromium got them, or nothing. It alone would not do: bytes that are no UTF-8 are
///        missing there, together with what comes right behind them, up to the end of the line and the beginning of the next
///        one. What is not found there comes last.
Headers HeadersOnTheWire(const Json& object, std::string_view text);

/// Puts headers in place of those of the same name.
void Replace(Headers& headers, const Headers& others);

} // namespace testbed::chromium
