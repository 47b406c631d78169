#include "tests/support/temporary_folder.h"

#include <windows.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace launcher::test {

namespace stdfs = std::filesystem;

stdfs::path UsersTemp() {
    const stdfs::path temp = stdfs::temp_directory_path();
    std::wstring name(32768, L'\0');
    name.resize(GetLongPathNameW(temp.c_str(), name.data(), static_cast<DWORD>(name.size())));
    if (name.empty()) return temp;
    return name;
}

namespace {

stdfs::path NewFolder() {
    static unsigned counter = 0;
    for (;;) {
        const std::wstring name = kTemporaryFolderName + std::to_wstring(GetCurrentProcessId()) +
                                  L"-" + std::to_wstring(GetTickCount64()) + L"-" +
                                  std::to_wstring(++counter);
        const stdfs::path folder = UsersTemp() / name;
        if (stdfs::create_directories(folder)) return folder;
    }
}

bool IsFolderToEmpty(const stdfs::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

// Not std::filesystem's own: MinGW's never ends when a file disappears while it is at it, as one
// does that the last program to use it deletes.
void RemoveWhatCanBe(const stdfs::path& path) {
    std::error_code ignored;
    std::vector<stdfs::path> entries;
    if (IsFolderToEmpty(path))
        for (const auto& entry : stdfs::directory_iterator(path, ignored))
            entries.push_back(entry.path());
    for (const stdfs::path& entry : entries)
        RemoveWhatCanBe(entry);
    stdfs::remove(path, ignored);
}

}  // namespace

TemporaryFolder::TemporaryFolder() : dir_(NewFolder()) {}

TemporaryFolder::~TemporaryFolder() {
    RemoveAll(dir_);
}

std::string TemporaryFolder::Text() const {
    return ToUtf8(dir_);
}

std::string TemporaryFolder::Text(std::string_view relative) const {
    return ToUtf8(dir_ / FromUtf8(relative));
}

std::string TemporaryFolder::Write(std::string_view relative, std::string_view content) const {
    const stdfs::path path = dir_ / FromUtf8(relative);
    stdfs::create_directories(path.parent_path());
    WriteFile(path, content);
    return ToUtf8(path);
}

std::string TemporaryFolder::MakeDir(std::string_view relative) const {
    const stdfs::path path = dir_ / FromUtf8(relative);
    stdfs::create_directories(path);
    return ToUtf8(path);
}

stdfs::path FromUtf8(std::string_view text) {
    return stdfs::path(std::u8string(text.begin(), text.end()));
}

std::string ToUtf8(const stdfs::path& path) {
    stdfs::path native = path;
    const std::u8string text = native.make_preferred().u8string();
    return std::string(text.begin(), text.end());
}

std::string ReadFile(const stdfs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + ToUtf8(path));
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void WriteFile(const stdfs::path& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + ToUtf8(path));
}

// A virus scanner may still look at a file that has just been written, and Windows may not yet have
// let go of a program that has just ended.
void RemoveAll(const stdfs::path& path) {
    constexpr int kPatience = 20;  // times 100 milliseconds
    for (int i = 0; RemoveWhatCanBe(path), stdfs::exists(path) && i < kPatience; ++i)
        Sleep(100);
}

// A virus scanner may still look at what has just been written, in a folder too.
void Rename(const stdfs::path& from, const stdfs::path& to) {
    constexpr int kPatience = 20;  // times 100 milliseconds
    std::error_code error;
    for (int i = 0; stdfs::rename(from, to, error), error && i < kPatience; ++i)
        Sleep(100);
    if (error) throw stdfs::filesystem_error("cannot rename", from, to, error);
}

Tree TreeBelow(const stdfs::path& root) {
    Tree tree;
    if (!stdfs::exists(root)) return tree;
    for (const auto& entry : stdfs::recursive_directory_iterator(root)) {
        const std::string name = ToUtf8(entry.path().lexically_relative(root));
        tree[name] = entry.is_directory() ? "/" : ReadFile(entry.path());
    }
    return tree;
}

}  // namespace launcher::test
