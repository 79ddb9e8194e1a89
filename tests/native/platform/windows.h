// What the parser and the texts of cookies take from the platform, for a native build of them.
#pragma once

#include <chrono>
#include <cstdint>

using BOOL = int;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using PWSTR = wchar_t*;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};

namespace native_platform {

inline constexpr std::uint64_t kIntervalsPerSecond = 10'000'000;
inline constexpr std::uint64_t kSecondsPerDay = 86'400;

/// Day 0 of FILETIME.
inline std::chrono::sys_days FirstDay() {
    using namespace std::chrono;
    return sys_days(year(1601) / January / 1);
}

} // namespace native_platform

/// 2021-06-09 10:18:14 UTC, always.
inline void GetSystemTimeAsFileTime(FILETIME* time) {
    *time = {0xC1A2F700, 0x01D75D18};
}

inline BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* result) {
    using namespace native_platform;
    using namespace std::chrono;
    // The parts of a date keep but the low bits of a greater number.
    if (time->wYear < 1601 || time->wYear > 30827 || time->wMonth > 12 || time->wDay > 31 ||
        time->wHour > 23 || time->wMinute > 59 || time->wSecond > 59) {
        return FALSE;
    }
    const year_month_day date(year(time->wYear), month(time->wMonth), day(time->wDay));
    if (!date.ok()) {
        return FALSE;
    }
    const auto days = static_cast<std::uint64_t>((sys_days(date) - FirstDay()).count());
    const std::uint64_t seconds =
        days * kSecondsPerDay + time->wHour * 3600U + time->wMinute * 60U + time->wSecond;
    const std::uint64_t intervals = seconds * kIntervalsPerSecond;
    *result = {static_cast<DWORD>(intervals), static_cast<DWORD>(intervals >> 32U)};
    return TRUE;
}

inline BOOL FileTimeToSystemTime(const FILETIME* time, SYSTEMTIME* result) {
    using namespace native_platform;
    using namespace std::chrono;
    const std::uint64_t intervals = (std::uint64_t{time->dwHighDateTime} << 32U) | time->dwLowDateTime;
    if ((intervals >> 63U) != 0) {
        return FALSE;
    }
    const std::uint64_t seconds = intervals / kIntervalsPerSecond;
    const sys_days date = FirstDay() + days(seconds / kSecondsPerDay);
    const year_month_day fields(date);
    *result = {static_cast<WORD>(static_cast<int>(fields.year())),
               static_cast<WORD>(static_cast<unsigned>(fields.month())),
               static_cast<WORD>(weekday(date).c_encoding()),
               static_cast<WORD>(static_cast<unsigned>(fields.day())),
               static_cast<WORD>(seconds / 3600 % 24),
               static_cast<WORD>(seconds / 60 % 60),
               static_cast<WORD>(seconds % 60),
               0};
    return TRUE;
}
