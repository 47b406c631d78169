#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "fs/path.h"

namespace launcher::mediatool {

// The list of checksums at a volume's root, in the format of sha256sum: each line the SHA-256 of a
// file in hexadecimal digits, two blanks, and the file's name from the root on, with "/" between
// folders, in UTF-8. Lines end in LF.
inline constexpr char kChecksumsName[] = "SHA256SUMS";

// Gives the bytes of a file to `take`, piece by piece. Throws Refused, "cannot be " and `what`,
// when it cannot be read to its end.
void ReadWhole(const Path& file, const std::function<void(std::string_view)>& take,
               const std::string& what = "read");

// The checksum of a file; `progress` is told of the bytes of each piece and may be empty. Throws
// Refused.
std::string ChecksumOf(const Path& file, const std::function<void(std::uint64_t)>& progress);

// One line of the list. A name with a backslash or a line end in it, which no file on Windows has,
// is written as sha256sum writes it.
std::string ChecksumLine(const std::string& hash, const std::string& name);

// The files of a volume that its list names, with their sizes: all but the list itself and what
// create leaves in an unfinished set. The volumes of a set (`volumes`, in lower case) that lie
// below it have lists of their own. Throws Refused when a folder cannot be listed.
using SizesByPath = std::map<std::string, std::uint64_t>;
SizesByPath FilesOfVolume(const Path& volume, const std::set<std::string>& volumes);

// The list of a volume with these files.
std::string ChecksumsText(const Path& volume, const SizesByPath& files,
                          const std::function<std::string(const Path& file)>& checksumOf);

}  // namespace launcher::mediatool
