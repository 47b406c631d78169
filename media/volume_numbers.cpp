#include "media/volume_numbers.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "fs/directory_enumerator.h"

namespace launcher {
namespace {

// Far more than any medium has; up to here, asking for each is cheaper than a listing.
constexpr VolumeNumber kOrdinaryCount = 100;

constexpr std::size_t kMostDigits = 10;  // of INT_MAX + 98

char ToLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The number of an entry named number + `suffix`, by the file system's rules for letters; 0 for any
// other name, one with a leading zero among them.
VolumeNumber NumberOfEntry(std::string_view name, std::string_view suffix) {
    if (name.size() <= suffix.size()) return 0;
    const std::string_view digits = name.substr(0, name.size() - suffix.size());
    const bool matches =
        std::ranges::equal(name.substr(digits.size()), suffix, {}, ToLower, ToLower);
    if (!matches || digits.front() == '0' || digits.size() > kMostDigits) return 0;
    VolumeNumber number = 0;
    for (const char digit : digits) {
        if (digit < '0' || digit > '9') return 0;
        number = number * 10 + (digit - '0');
    }
    return number;
}

// The folder that Join puts entries into, for a listing, which reads the text again. The dot saves
// what is nothing then: the empty path, onto which entries join into the root of the current drive,
// and a name of two quotes.
std::string ListableText(const Path& folder) {
    const std::string& text = folder.Text();
    return IsEmpty(Path(text)) ? text + "\\." : text;
}

// The numbers from `first` to `last` among the folder's entries, in order; nothing when it cannot
// be listed.
std::optional<std::vector<VolumeNumber>> ListedNumbers(const Path& folder, VolumeNumber first,
                                                       VolumeNumber last,
                                                       const std::string& suffix) {
    const auto entries =
        DirectoryEnumerator::Open(ListableText(folder), DirectoryEnumerator::kEverything);
    if (entries->AtEnd()) return std::nullopt;
    std::vector<VolumeNumber> numbers;
    for (; !entries->AtEnd(); entries->Next()) {
        const VolumeNumber number = NumberOfEntry(entries->Name(), suffix);
        if (number >= first && number <= last) numbers.push_back(number);
    }
    std::ranges::sort(numbers);
    // Twice the same only where names differ in nothing but case.
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

}  // namespace

void ForEachVolumeNumber(const Path& folder, VolumeNumber first, VolumeNumber last,
                         const std::string& suffix,
                         const std::function<void(VolumeNumber)>& visit) {
    if (last - first >= kOrdinaryCount) {
        if (const auto numbers = ListedNumbers(folder, first, last, suffix)) {
            std::ranges::for_each(*numbers, visit);
            return;
        }
    }
    for (VolumeNumber number = first; number <= last; ++number)
        visit(number);
}

}  // namespace launcher
