#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace launcher::mediatool {

// A point in time, in units of 100 nanoseconds, as Windows counts them in UTC.
using Moment = std::uint64_t;
Moment MomentOf(const FILETIME& time);

// The present, to the millisecond or so that the system's clock ticks in.
Moment Now();

// "09:30:00", in this machine's time zone.
std::string ClockText(Moment moment);

// "2027-05-04 09:30:00 +02:00", likewise, with what this zone is ahead of UTC.
std::string DateAndClockText(Moment moment);

// "2027-05-04T07:30:00.000Z": UTC, for programs.
std::string UtcText(Moment moment);

// "1:04:59", hours first, of a length of time in milliseconds.
std::string LengthText(std::uint64_t milliseconds);

}  // namespace launcher::mediatool
