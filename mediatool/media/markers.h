#pragma once

#include <optional>
#include <string>

namespace launcher::mediatool {

// The texts of the small files of a disc set, as the launcher reads them.
std::string CountFileText(int volumes);
// `text` with another count and all its other lines; nothing when its first line is no number, and
// any line has something in it that would be lost.
std::optional<std::string> WithCount(const std::string& text, int volumes);
std::string MarkerText(const std::string& id);
// `text` with another identifier, and all its other lines as they are; nothing when some of them
// would be lost, because a carriage return alone is between them and the identifier.
std::optional<std::string> WithId(const std::string& text, const std::string& id);

}  // namespace launcher::mediatool
