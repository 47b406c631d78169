#include "tests/fuzz/support/input.h"

// The fuzzer's way in.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    launcher::fuzz::TestOneInput(launcher::fuzz::Input(data, size));
    return 0;
}
