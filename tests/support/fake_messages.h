#pragma once

namespace launcher::test {

// A program that links fake_messages shows nothing; its messages are in the journal:
//   "error: TEXT"                 in the way that the options ask for (also warning, info, plain)
//   "warning on console: TEXT"    never in a box
//   "trace: TEXT"                 a progress message of severity Info
//   "warning trace: TEXT"         one of another severity (also plain)
// A failed system call has its error code on a last line, "rc=" and the number, and no system text.
// Where a message is to end the process, the fake throws this instead.
struct ProcessExit {};

}  // namespace launcher::test
