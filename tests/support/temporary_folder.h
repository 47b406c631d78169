#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace launcher::test {

// What the name of every temporary folder begins with.
inline constexpr wchar_t kTemporaryFolderName[] = L"launcher-test-";

// The user's temporary folder by its long name: "TEMP" may hold a short one (RUNNER~1), and Windows
// answers with long ones.
std::filesystem::path UsersTemp();

// A new empty folder below the user's temporary folder, removed with all it holds at the end.
// Links below it are removed, not followed.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::filesystem::path& Dir() const { return dir_; }
    // The folder, or `relative` below it, as the UTF-8 text with backslashes that the launcher
    // takes.
    std::string Text() const;
    std::string Text(std::string_view relative) const;

    // Writes a file below the folder, making the folders it needs; returns its Text().
    std::string Write(std::string_view relative, std::string_view content = {}) const;
    // Makes a folder below the folder; returns its Text().
    std::string MakeDir(std::string_view relative) const;

  private:
    std::filesystem::path dir_;
};

// A UTF-8 text as a path, and back with backslashes.
std::filesystem::path FromUtf8(std::string_view text);
std::string ToUtf8(const std::filesystem::path& path);

// The bytes of a file; fails the test when it cannot be read.
std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, std::string_view content);

// Removes a folder with all it holds, if it is there. Links below it are removed, not followed.
void RemoveAll(const std::filesystem::path& path);

// Another name for a file or folder, in the place of none.
void Rename(const std::filesystem::path& from, const std::filesystem::path& to);

// Everything below a folder: the relative path and the content of each file, of each folder "/".
// Empty when there is no such folder.
using Tree = std::map<std::string, std::string>;
Tree TreeBelow(const std::filesystem::path& root);

}  // namespace launcher::test
