// What an uncaught exception ends in, with the GNU library. Its own handler describes the exception
// on a console that this program does not have, and brings 50 KB of name decoding along; this
// definition takes its place in the link and goes straight to the runtime's abort.

#include <cstdlib>
#include <version>

#ifdef __GLIBCXX__
namespace __gnu_cxx {

[[noreturn]] void __verbose_terminate_handler();
[[noreturn]] void __verbose_terminate_handler() {
    std::abort();
}

}  // namespace __gnu_cxx
#endif
