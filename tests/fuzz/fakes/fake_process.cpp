// The process around the options: its messages, its text encoding and its place.

#include "tests/fuzz/fakes/fake_process.h"

#include "fs/encoding.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "platform/module_path.h"

namespace launcher::fuzz {

void AppendUtf8(std::string& text, char32_t character) {
    const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) {
        append(character);
        return;
    }
    int more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    constexpr char32_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
    append(kLead[more] | character >> (6 * more));
    while (more-- > 0)
        append(0x80 | (character >> (6 * more) & 0x3F));
}

}  // namespace launcher::fuzz

namespace launcher {

// Each element is a whole character here, unlike on Windows.
std::string ToNarrow(const wchar_t* wide) {
    std::string narrow;
    for (; wide != nullptr && *wide != L'\0'; ++wide)
        fuzz::AppendUtf8(narrow, static_cast<char32_t>(*wide));
    return narrow;
}

std::string GetModuleDirectory() {
    return fuzz::kModuleFolder;
}

void ReportErrorAndExit(const LaunchOptions& options, const std::string& text) {
    throw fuzz::ReportedError{text, options.useGui};
}

}  // namespace launcher
