// The two time scales of cookies.
#include "cookies/cookie_time.h"

#include <limits>

namespace kelda {
namespace {

constexpr std::int64_t kIntervalsPerSecond = 10'000'000;
constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;
constexpr std::uint64_t kIntervalsFrom1601To1970 = 116'444'736'000'000'000;

/// In seconds since 1601, so that the multiplication below fits.
constexpr std::int64_t kLastSecond = std::numeric_limits<std::int64_t>::max() / kIntervalsPerSecond;

std::int64_t ToWholeSeconds(std::uint64_t intervals) {
    return static_cast<std::int64_t>(intervals / kIntervalsPerSecond);
}

/// Seconds since 1601. The comparisons are made in double: only what passes them fits the integer.
std::int64_t ClampedSeconds(double expires) {
    if (!(expires > static_cast<double>(-kSecondsFrom1601To1970))) { // NaN included
        return 0;
    }
    if (expires >= static_cast<double>(kLastSecond - kSecondsFrom1601To1970)) {
        return kLastSecond;
    }
    return static_cast<std::int64_t>(expires) + kSecondsFrom1601To1970;
}

} // namespace

std::int64_t SecondsSince1970(const FILETIME& time) {
    const std::uint64_t intervals = (std::uint64_t{time.dwHighDateTime} << 32U) | time.dwLowDateTime;
    // Both differences are of unsigned numbers: none can overflow.
    return intervals < kIntervalsFrom1601To1970 ? -ToWholeSeconds(kIntervalsFrom1601To1970 - intervals)
                                                : ToWholeSeconds(intervals - kIntervalsFrom1601To1970);
}

double ExpiresFromFileTime(const FILETIME& time) {
    return static_cast<double>(SecondsSince1970(time));
}

FILETIME FileTimeFromExpires(double expires) {
    const auto intervals = static_cast<std::uint64_t>(ClampedSeconds(expires) * kIntervalsPerSecond);
    return {static_cast<DWORD>(intervals & 0xFFFFFFFFU), static_cast<DWORD>(intervals >> 32U)};
}

} // namespace kelda
