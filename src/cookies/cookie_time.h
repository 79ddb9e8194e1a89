// The two time scales of cookies: a record's expiry in seconds since 1970, and FILETIME in 100-nanosecond intervals
// since 1601.
#pragma once

#include <cstdint>

#include <windows.h>

namespace kelda {

/// Whole seconds since 1970-01-01 00:00:00 UTC, truncated toward it. All values of FILETIME are taken as they are, also
/// those that the system takes for no date.
std::int64_t SecondsSince1970(const FILETIME& time);

/// The same, as the expiry of a record.
double ExpiresFromFileTime(const FILETIME& time);

/// The expiry as FILETIME, without fractions of a second. What lies outside 1601-01-01 00:00:00 to 30828-09-14
/// 02:48:05, the last second that the system takes for a date, becomes the nearest of these two: the past stays the
/// past, the future the future. NaN becomes the first.
FILETIME FileTimeFromExpires(double expires);

} // namespace kelda
