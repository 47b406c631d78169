#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fs/path.h"

namespace launcher::mediatool {

// The list of checksums at a volume's root, in the format of sha256sum: each line the SHA-256 of a
// file in hexadecimal digits, two blanks, and the file's name from the root on, with "/" between
// folders, in UTF-8. Lines end in LF.
inline constexpr char kChecksumsName[] = "SHA256SUMS";

// The checksum of a file; `progress` is told of the bytes of each piece and may be empty. Throws
// Refused.
std::string ChecksumOf(const Path& file, const std::function<void(std::uint64_t)>& progress);

// One line of the list. A name with a backslash or a line end in it, which no file on Windows has,
// is written as sha256sum writes it.
std::string ChecksumLine(const std::string& hash, const std::string& name);

// What a list says. Other programs' lists are read as well: with "*" for the second blank, "./" in
// front of names, capital digits, CR LF.
struct ChecksumList {
    struct File {
        std::string name;  // as ChecksumLine() takes it
        std::string hash;
    };
    std::vector<File> files;
    std::size_t badLine = 0;  // the number of the first that is none of these; 0 for none
};
ChecksumList ParseChecksums(std::string_view text);

// The folders of a set's volumes, each once: those that are given, and those that the launcher
// finds.
std::vector<Path> FoldersOf(const std::vector<Path>& given, const std::vector<std::string>& found);

// The files of a volume that its list names, with their sizes, by their names in the list: all but
// the list itself and what create leaves in an unfinished set. Not looked into are the other
// volumes of the set where they lie below this one, links to folders, and at the root of a drive
// the system's own folders. `unlisted` is told of a folder that cannot be listed, with the reason
// in GetLastError().
using SizesByName = std::map<std::string, std::uint64_t>;
SizesByName FilesOfVolume(const Path& volume, const std::vector<Path>& volumes,
                          const std::function<void(const Path& folder)>& unlisted);

}  // namespace launcher::mediatool
