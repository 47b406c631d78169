#include "mediatool/run/moment.h"

#include <algorithm>

namespace launcher::mediatool {
namespace {

SYSTEMTIME InUtc(Moment moment) {
    const FILETIME time{static_cast<DWORD>(moment), static_cast<DWORD>(moment >> 32)};
    SYSTEMTIME utc{};
    FileTimeToSystemTime(&time, &utc);
    return utc;
}

SYSTEMTIME InLocalTime(Moment moment) {
    const SYSTEMTIME utc = InUtc(moment);
    SYSTEMTIME local{};
    SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    return local;
}

// With zeros in front.
std::string Digits(std::uint64_t number, std::size_t count) {
    const std::string digits = std::to_string(number);
    return std::string(count - std::min(count, digits.size()), '0') + digits;
}

std::string DateOf(const SYSTEMTIME& time) {
    return std::to_string(time.wYear) + "-" + Digits(time.wMonth, 2) + "-" + Digits(time.wDay, 2);
}

std::string ClockOf(const SYSTEMTIME& time) {
    return Digits(time.wHour, 2) + ":" + Digits(time.wMinute, 2) + ":" + Digits(time.wSecond, 2);
}

// "+02:00"
std::string ZoneOf(Moment moment, const SYSTEMTIME& local) {
    constexpr Moment kMinute = 600'000'000;
    FILETIME time{};
    SystemTimeToFileTime(&local, &time);
    const Moment there = MomentOf(time) / kMinute;
    const Moment here = moment / kMinute;
    const bool isBehind = there < here;
    const Moment minutes = isBehind ? here - there : there - here;
    return (isBehind ? "-" : "+") + Digits(minutes / 60, 2) + ":" + Digits(minutes % 60, 2);
}

}  // namespace

Moment MomentOf(const FILETIME& time) {
    return (Moment{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

Moment Now() {
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    return MomentOf(time);
}

std::string ClockText(Moment moment) {
    return ClockOf(InLocalTime(moment));
}

std::string DateAndClockText(Moment moment) {
    const SYSTEMTIME local = InLocalTime(moment);
    return DateOf(local) + " " + ClockOf(local) + " " + ZoneOf(moment, local);
}

std::string UtcText(Moment moment) {
    const SYSTEMTIME utc = InUtc(moment);
    return DateOf(utc) + "T" + ClockOf(utc) + "." + Digits(utc.wMilliseconds, 3) + "Z";
}

std::string LengthText(std::uint64_t milliseconds) {
    const std::uint64_t seconds = milliseconds / 1000;
    return std::to_string(seconds / 3600) + ":" + Digits(seconds / 60 % 60, 2) + ":" +
           Digits(seconds % 60, 2);
}

}  // namespace launcher::mediatool
