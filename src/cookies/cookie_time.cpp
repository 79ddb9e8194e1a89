// The two time scales of cookies.
#include "cookies/cookie_time.h"

namespace kelda {
namespace {

constexpr std::int64_t kIntervalsPerSecond = 10'000'000;
constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;
constexpr std::uint64_t kIntervalsFrom1601To1970 = 116'444'736'000'000'000;

// The dates that the system documents, in seconds since 1601. Not second 0: a store may take a time of zero for none.
constexpr std::int64_t kFirstSecond = 1;
constexpr std::int64_t kLastSecond = 922'314'988'799; // 30827-12-31 23:59:59

std::int64_t ToWholeSeconds(std::uint64_t intervals) {
    return static_cast<std::int64_t>(intervals / kIntervalsPerSecond);
}

/// Seconds since 1601. The comparisons are made in double: only what passes them fits the integer.
std::int64_t ClampedSeconds(double expires) {
    if (!(expires > static_cast<double>(kFirstSecond - kSecondsFrom1601To1970))) { // NaN included
        return kFirstSecond;
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
