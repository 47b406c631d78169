// A program with the fault that its argument names, for tools/check-undefined.sh.

#include <climits>
#include <cstring>
#include <string>

int main(int argc, char** argv) {
    const std::string fault = argc > 1 ? argv[1] : "";
    if (fault == "overflow") {
        volatile int number = INT_MAX;
        number = number + 1;
    }
    if (fault == "index") {
        const std::string text = "text";
        volatile std::size_t at = 5;
        volatile char c = text[at];
        static_cast<void>(c);
    }
    char* const volatile memory = new char[24];
    if (fault == "overrun") {
        volatile int length = 40;
        std::memset(memory, 1, static_cast<std::size_t>(length));
    }
    delete[] memory;
    if (fault == "used after release") {
        memory[20] = 1;
    }
    if (fault == "released twice") {
        delete[] memory;
    }
    return 0;
}
