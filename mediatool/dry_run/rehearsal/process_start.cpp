#include "mediatool/dry_run/rehearsal/process_start.h"

#include <windows.h>

#include <vector>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/open_file.h"
#include "mediatool/base/files.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"
#include "mediatool/media/program_file.h"

namespace launcher::mediatool {
namespace {

// The programs that a command line may mean, in the order in which Windows tries them: what stands
// in quotes; without quotes the text up to each blank, as the program's path may hold some.
std::vector<std::wstring> Candidates(const std::wstring& line) {
    if (line.starts_with(L'"')) return {line.substr(1, line.find(L'"', 1) - 1)};
    constexpr const wchar_t* kBlanks = L" \t";
    std::vector<std::wstring> candidates;
    for (std::size_t end = line.find_first_of(kBlanks, 1); end != std::wstring::npos;
         end = line.find_first_of(kBlanks, end + 1))
        candidates.push_back(line.substr(0, end));
    candidates.push_back(line);
    return candidates;
}

// Where the launcher's process would look for a program that is named without a folder.
std::wstring SearchFolders() {
    wchar_t system[MAX_PATH] = {};
    wchar_t windows[MAX_PATH] = {};
    GetSystemDirectoryW(system, MAX_PATH);
    GetWindowsDirectoryW(windows, MAX_PATH);
    const std::string launcher = Parent(Path(CurrentRehearsal()->machine.launcherPath)).Text();
    return ToWide(launcher) + L"\\;.;" + system + L";" + windows + L"\\system;" + windows + L";" +
           ToWide(GetEnvVar("PATH"));
}

// Relative to the folders that are searched.
bool IsSearchedFor(const std::wstring& name) {
    return !name.starts_with(L'\\') && !name.starts_with(L'/') &&
           (name.size() < 2 || name[1] != L':');
}

struct Verdict {
    bool found;  // nothing else is tried then
    DWORD error;
};

// For what is in the copy, or would be.
Verdict JudgeInCopy(const Path& program) {
    const PretendedCopy& copy = CurrentRehearsal()->journal.copy;
    const auto file = copy.contents.find(CopyKey(program));
    if (file != copy.contents.end()) return {true, ImageError(ToWide(file->second.source))};
    if (copy.HasFolder(program)) return {false, ERROR_ACCESS_DENIED};
    if (copy.HasFolder(Parent(program))) return {false, ERROR_FILE_NOT_FOUND};
    return {false, ERROR_PATH_NOT_FOUND};
}

Verdict Judge(const std::wstring& name) {
    const Path path(ToNarrow(name.c_str()));
    if (path.Text().find(kPretendedUuid) != std::string::npos) return JudgeInCopy(path);
    wchar_t found[MAX_PATH] = {};
    const DWORD length =
        SearchPathW(SearchFolders().c_str(), name.c_str(), L".exe", MAX_PATH, found, nullptr);
    const bool fits = length > 0 && length < MAX_PATH;
    if (fits && (GetFileAttributesW(found) & FILE_ATTRIBUTE_DIRECTORY) == 0)
        return {true, ImageError(found)};
    if (IsSearchedFor(name)) return {false, ERROR_FILE_NOT_FOUND};
    if (name.size() > kLongestPath) return {false, ERROR_PATH_NOT_FOUND};
    // The reason is that of an attempt to open it: a folder cannot be.
    const FileHandle file = OpenSharedFile(name, GENERIC_READ, OPEN_EXISTING);
    if (!file) return {false, GetLastError()};
    return {false, ERROR_FILE_NOT_FOUND};
}

}  // namespace

std::uint32_t StartError(const std::string& commandLine) {
    DWORD first = ERROR_SUCCESS;
    for (const std::wstring& candidate : Candidates(ToWide(commandLine))) {
        const Verdict verdict = Judge(candidate);
        if (verdict.found) return verdict.error;
        if (first == ERROR_SUCCESS) first = verdict.error;
    }
    return first;
}

}  // namespace launcher::mediatool
