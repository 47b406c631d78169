// The small files of split media: lines, numbers, the identifier of a set and the volume count,
// against the file cut into lines beforehand.

#include <string>

#include "media/input_stream.h"
#include "media/volume_text.h"
#include "tests/fuzz/models/volume_model.h"
#include "tests/fuzz/support/check.h"
#include "tests/fuzz/support/input.h"

namespace launcher::fuzz {
namespace {

// What matters in these files, whole words included: a byte below their number stands for one.
std::string FileText(Input& input) {
    static const std::string kWords[] = {"\n",
                                         "\r\n",
                                         "\r",
                                         "MTBDIR=",
                                         "mtbdir=",
                                         " ",
                                         "\t",
                                         "\v",
                                         "\xEF\xBB\xBF",
                                         "-",
                                         "+",
                                         "0",
                                         "1",
                                         "2",
                                         "MTBDIR",
                                         "2147483647",
                                         "2147483648",
                                         "21474836",
                                         "47",
                                         "48",
                                         "49",
                                         "99999999999",
                                         "00000000000",
                                         "volumes",
                                         "\n\n",
                                         std::string(1, '\0')};
    constexpr unsigned kCount = std::size(kWords);
    std::string text;
    while (!input.AtEnd()) {
        const unsigned byte = input.Byte();
        text += byte >= 32 && byte < 128 ? std::string(1, static_cast<char>(byte))
                                         : kWords[byte % kCount];
    }
    return text;
}

void CheckLines(const std::string& bytes, const TextFile& file) {
    InputStream stream(bytes);
    std::string line = "from before";
    for (const std::string& expected : file.lines) {
        ReadTextLine(stream, line);
        CheckEqual<std::int64_t>("ReadTextLine fails", bytes, !stream, false);
        CheckEqual("ReadTextLine", bytes, line, expected);
    }
    // A stream that is at its end already is not read at all, which leaves the line alone.
    const std::string last = "\r\r";
    line = last;
    ReadTextLine(stream, line);
    CheckEqual<std::int64_t>("ReadTextLine at the end", bytes, !stream, true);
    CheckEqual("ReadTextLine at the end", bytes, line, file.lastIsOpen ? last : std::string());
}

}  // namespace

void TestOneInput(Input input) {
    const int fallback = static_cast<int>(input.Byte()) - 128;
    const std::string bytes = FileText(input);
    const TextFile file = SplitLines(bytes);
    CheckLines(bytes, file);

    CheckEqual<std::int64_t>("ToIntOr", bytes, ToIntOr(bytes, fallback),
                             LeadingNumber(bytes).value_or(fallback));
    InputStream marker(bytes);
    CheckEqual("FindMtbDir", bytes, FindMtbDir(marker), MtbDirOf(file));

    InputStream stream(bytes);
    const std::optional<VolumeCount> actual = ParseVolumeCount(stream);
    const std::string first = file.lines.empty() ? std::string() : file.lines.front();
    const std::optional<int> expected = LeadingNumber(first);
    CheckEqual<std::int64_t>("ParseVolumeCount", bytes, actual.has_value(), expected.has_value());
    if (actual) {
        CheckEqual("ParseVolumeCount", bytes, actual->line, first);
        CheckEqual<std::int64_t>("ParseVolumeCount", bytes, actual->count, *expected);
    }
}

}  // namespace launcher::fuzz
