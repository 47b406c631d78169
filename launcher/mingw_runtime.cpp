// Two pieces of the GNU runtime that the programs replace.

#ifdef __MINGW32__

#include <windows.h>

#include <cstdint>
#include <cstdlib>

// What an uncaught exception ends in. The GNU library's own handler describes the exception on a
// console, which the launcher does not have, and pulls in 50 KB of name demangling.
namespace __gnu_cxx {

[[noreturn]] void __verbose_terminate_handler();
[[noreturn]] void __verbose_terminate_handler() {
    std::abort();
}

}  // namespace __gnu_cxx

// The stack protector's canary. The GNU library fills it from the system's cryptography, which
// loads three more libraries at every start; here it is derived from values that differ between
// runs, as Microsoft's runtime does: the time, the counters and where the program was loaded.
extern "C" {

extern std::uintptr_t __stack_chk_guard;
std::uintptr_t __stack_chk_guard = 0;

[[noreturn]] void __stack_chk_fail();
[[noreturn]] void __stack_chk_fail() {
    std::abort();
}

}  // extern "C"

namespace {

// Before every other constructor.
__attribute__((constructor(101))) void FillStackGuard() {
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    LARGE_INTEGER counter{};
    QueryPerformanceCounter(&counter);
    std::uint64_t guard = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    guard ^= static_cast<std::uint64_t>(counter.QuadPart) * 0x9E3779B97F4A7C15;  // spreads the bits
    guard ^= (std::uint64_t{GetCurrentProcessId()} << 32) ^ GetCurrentThreadId();
    guard ^= reinterpret_cast<std::uintptr_t>(&time);
    __stack_chk_guard = static_cast<std::uintptr_t>(guard);
}

}  // namespace

#endif
