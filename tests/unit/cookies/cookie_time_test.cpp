// The two time scales, to their ends.
#include "cookies/cookie_time.h"

#include <limits>
#include <utility>

#include <gtest/gtest.h>

namespace kelda {
namespace {

constexpr std::uint64_t kEpoch = 116'444'736'000'000'000;
constexpr std::uint64_t kFirst = 10'000'000;
constexpr std::uint64_t kLast = 9'223'149'887'990'000'000;

FILETIME FromIntervals(std::uint64_t intervals) {
    return {static_cast<DWORD>(intervals & 0xFFFFFFFFU), static_cast<DWORD>(intervals >> 32U)};
}

std::uint64_t IntervalsOf(double expires) {
    const FILETIME time = FileTimeFromExpires(expires);
    return (std::uint64_t{time.dwHighDateTime} << 32U) | time.dwLowDateTime;
}

TEST(CookieTime, FileTimesBecomeWholeSecondsTruncatedTowardTheEpoch) {
    const std::pair<std::uint64_t, double> times[] = {
        {kEpoch, 0},
        {kEpoch + 9'999'999, 0},
        {kEpoch + 10'000'000, 1},
        {kEpoch - 1, 0},
        {kEpoch - 9'999'999, 0},
        {kEpoch - 10'000'000, -1},
        {0, -11644473600},
        {132'677'074'940'000'000, 1623233894},
        {std::numeric_limits<std::int64_t>::max(), 910692730085},
        {std::numeric_limits<std::uint64_t>::max(), 1833029933770},
    };
    for (const auto& [intervals, seconds] : times) {
        EXPECT_EQ(ExpiresFromFileTime(FromIntervals(intervals)), seconds) << intervals;
        EXPECT_EQ(static_cast<double>(SecondsSince1970(FromIntervals(intervals))), seconds) << intervals;
    }
}

TEST(CookieTime, ExpiriesLoseTheirFractionOfASecond) {
    const std::pair<double, std::uint64_t> expiries[] = {
        {0, kEpoch},
        {0.999, kEpoch},
        {-0.999, kEpoch},
        {-1, kEpoch - 10'000'000},
        {1623233894.9, 132'677'074'940'000'000},
        {-11644473599, kFirst},
        {-11644473598, 2 * kFirst},
        {910670515199, kLast},
        {910670515198.5, kLast - 10'000'000},
    };
    for (const auto& [expires, intervals] : expiries) {
        EXPECT_EQ(IntervalsOf(expires), intervals) << expires;
    }
}

TEST(CookieTime, ExpiriesBeyondTheSystemsDatesBecomeItsFirstOrLastSecond) {
    using Double = std::numeric_limits<double>;
    for (const double future : {910670515200.0, 1e15, 9.3e18, 1e300, Double::infinity()}) {
        EXPECT_EQ(IntervalsOf(future), kLast) << future;
    }
    for (const double past :
         {-11644473600.0, -1e15, -9.3e18, -1e300, -Double::infinity(), Double::quiet_NaN()}) {
        EXPECT_EQ(IntervalsOf(past), kFirst) << past;
    }
}

TEST(CookieTime, TheFirstAndTheLastSecondAreDatesToTheSystem) {
    SYSTEMTIME fields{};
    const FILETIME first = FileTimeFromExpires(-1e15);
    ASSERT_TRUE(FileTimeToSystemTime(&first, &fields));
    EXPECT_EQ(fields.wYear, 1601);
    const FILETIME last = FileTimeFromExpires(1e15);
    ASSERT_TRUE(FileTimeToSystemTime(&last, &fields));
    EXPECT_EQ(fields.wYear, 30827);
    EXPECT_EQ(fields.wSecond, 59);
}

} // namespace
} // namespace kelda
