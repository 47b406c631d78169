#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace launcher::mediatool {

// How far work on files has come. Totals are 0 while nobody knows them.
struct Amounts {
    const char* what = "";  // is under way: "Copying"
    std::size_t files = 0;
    std::size_t allFiles = 0;
    std::uint64_t bytes = 0;
    std::uint64_t allBytes = 0;
};
using TellAmounts = std::function<void(const Amounts&)>;

// "Copying: 20 of 500 files, 45.6 MB of 1.2 GB, 22.8 MB/s", without what is not known;
// `milliseconds` since it began.
std::string TextOf(const Amounts& amounts, std::uint64_t milliseconds);

}  // namespace launcher::mediatool
