// autorun.inf, by which Windows offers to start a program when a disc is put in.

#include "fs/encoding.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kAutorunLimit = std::size_t{64} * 1024;

// Windows takes the text in UTF-16 as well, with a mark in front.
std::string AsUtf8(const std::string& bytes) {
    if (!bytes.starts_with("\xFF\xFE")) return bytes;
    std::wstring wide;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
        wide += static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) |
                                     static_cast<unsigned char>(bytes[i + 1]) << 8);
    return ToNarrow(wide.c_str());
}

// The program at the start of a command line.
std::string ProgramOf(const std::string& commandLine) {
    if (commandLine.starts_with('"')) return commandLine.substr(1, commandLine.find('"', 1) - 1);
    return commandLine.substr(0, commandLine.find_first_of(" \t"));
}

bool IsOurs(const Path& media, const std::string& program) {
    const Path file = FullPath(media.Text() + kBackslash + program);
    for (const char* name : {kLauncherName, "setup", "setup_noUAC.exe", "StartTUI.exe"})
        if (SameName(file, Join(media, name))) return true;
    return false;
}

}  // namespace

void CheckAutorun(const Subject& subject, Findings& out) {
    const Path file = Join(subject.Media(), "autorun.inf");
    bool isInSection = false;
    for (const std::string& text : LinesOf(AsUtf8(ReadStart(file, kAutorunLimit).value_or("")))) {
        const std::string line = Trimmed(text);
        const std::string lower = InLowerCase(line);
        if (line.starts_with('[')) isInSection = lower.starts_with("[autorun");
        const std::size_t equals = line.find('=');
        if (!isInSection || equals == std::string::npos) continue;
        const std::string key = Trimmed(lower.substr(0, equals));
        const std::string program = ProgramOf(Trimmed(line.substr(equals + 1)));
        const bool isStart = (key == "open" || key == "shellexecute") && !program.empty();
        if (isStart && !IsOurs(subject.Media(), program))
            out.Add("autorun-other-program", file, {Quoted(Harmless(program, ""))});
    }
}

}  // namespace launcher::mediatool
