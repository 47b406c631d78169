#include "mediatool/run/stream_file.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "fs/encoding.h"
#include "mediatool/base/files.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kReadAtOnce = 1 << 14;
constexpr std::uint64_t kTakeAtOnce = 2 << 20;
constexpr std::size_t kLinesAtOnce = 10'000;  // and those of the last piece
constexpr std::size_t kLongestLine = 1 << 20;
constexpr char kReplacement[] = "\xEF\xBF\xBD";

// The user's folder; for a user whose TEMP leads nowhere, the one that every Windows has.
std::vector<std::wstring> PossibleFolders() {
    std::wstring temp(MAX_PATH + 2, L'\0');
    temp.resize(GetTempPathW(static_cast<DWORD>(temp.size()), temp.data()));
    std::wstring windows(MAX_PATH, L'\0');
    windows.resize(GetWindowsDirectoryW(windows.data(), static_cast<UINT>(windows.size())));
    return {temp, windows + L"\\Temp\\"};
}

// Another run may still use the file of a process that had the same number.
std::wstring FileNameNumber(unsigned number) {
    return L"mediatool-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(number) +
           L".tmp";
}

FileHandle NewFileIn(const std::wstring& folder, std::wstring& path) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    for (unsigned number = 1;; ++number) {
        path = folder + FileNameNumber(number);
        FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ,
                                    &inheritable, CREATE_NEW,
                                    FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
        const DWORD error = file ? ERROR_SUCCESS : GetLastError();
        const bool isTaken = error == ERROR_FILE_EXISTS || error == ERROR_SHARING_VIOLATION;
        if (file || !isTaken || number == 1000) return file;
    }
}

std::string WellFormed(const std::string& line) {
    // In one pass: what an installer writes may be megabytes of zero bytes.
    std::string readable;
    for (const char byte : line)
        if (byte == '\0')
            readable += kReplacement;
        else
            readable += byte;
    return ToNarrow(ToWide(readable).c_str());
}

}  // namespace

StreamFile::StreamFile() {
    std::wstring path;
    for (const std::wstring& folder : PossibleFolders())
        if (!writer_) writer_ = NewFileIn(folder, path);
    if (writer_)
        reader_ = FileHandle(CreateFileW(path.c_str(), GENERIC_READ,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                         nullptr, OPEN_EXISTING, 0, nullptr));
    if (!reader_)
        throw std::runtime_error(
            "There is no temporary folder to follow the launcher's output in.");
}

std::uint64_t StreamFile::Size() const {
    LARGE_INTEGER size{};
    GetFileSizeEx(reader_.Get(), &size);
    return static_cast<std::uint64_t>(size.QuadPart);
}

std::vector<std::string> StreamFile::TakeLines() {
    std::vector<std::string> lines;
    std::string piece(kReadAtOnce, '\0');
    auto left = std::min<std::uint64_t>(Size() - taken_, kTakeAtOnce);
    while (left > 0 && lines.size() < kLinesAtOnce) {
        const auto wanted = static_cast<DWORD>(std::min<std::uint64_t>(left, kReadAtOnce));
        DWORD count = 0;
        if (!::ReadFile(reader_.Get(), piece.data(), wanted, &count, nullptr) || count == 0) break;
        left -= count;
        taken_ += count;
        Split(std::string_view(piece).substr(0, count), lines);
    }
    return lines;
}

void StreamFile::Split(std::string_view bytes, std::vector<std::string>& lines) {
    for (const char byte : bytes) {
        if (byte == '\r') {
            returned_ = true;
            continue;
        }
        if (byte == '\n' || (returned_ && !rest_.empty()) || IsFullBefore(byte))
            lines.push_back(WellFormed(std::exchange(rest_, {})));
        returned_ = false;
        if (byte != '\n') rest_ += byte;
    }
}

// Between characters, if there are any.
bool StreamFile::IsFullBefore(char byte) const {
    const bool isInCharacter = (byte & 0xC0) == 0x80;
    return rest_.size() >= kLongestLine + (isInCharacter ? 3 : 0);
}

std::string StreamFile::TakeRest() {
    return WellFormed(std::exchange(rest_, {}));
}

}  // namespace launcher::mediatool
