#include "mediatool/base/amounts.h"

#include <algorithm>
#include <iterator>

#include "mediatool/base/sentences.h"

namespace launcher::mediatool {
namespace {

// With three digits or so: "1.2 GB".
std::string Size(std::uint64_t bytes) {
    if (bytes < 1000) return Counted(bytes, "byte");
    const char* const units[] = {"KB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    std::uint64_t tenths = bytes / 100;
    for (; tenths >= 10000 && unit + 1 < std::size(units); ++unit)
        tenths /= 1000;
    const bool isRound = tenths >= 1000;
    return std::to_string(tenths / 10) + (isRound ? "" : "." + std::to_string(tenths % 10)) + " " +
           units[unit];
}

}  // namespace

std::string TextOf(const Amounts& amounts, std::uint64_t milliseconds) {
    std::string text = std::string(amounts.what) + ": ";
    if (amounts.allFiles > 0) text += std::to_string(amounts.files) + " of ";
    text += Counted(std::max(amounts.files, amounts.allFiles), "file");
    if (amounts.bytes == 0 && amounts.allBytes == 0) return text;
    text += ", " + Size(amounts.bytes);
    if (amounts.allBytes == 0) return text;
    const std::uint64_t rate = amounts.bytes * 1000 / std::max<std::uint64_t>(milliseconds, 1);
    return text + " of " + Size(amounts.allBytes) + ", " + Size(rate) + "/s";
}

}  // namespace launcher::mediatool
