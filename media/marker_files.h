#pragma once

#include <iosfwd>
#include <optional>
#include <string>

namespace launcher {

// The small text files that tie the volumes of a split media together. Plain 8-bit text, lines
// ended by LF or CR LF; the launcher only reads them and reports nothing about them.

// Reads one line, without its LF and without one CR before it. The stream is failed afterwards
// when no line could be read.
std::istream& ReadTextLine(std::istream& input, std::string& line);

// The value of the first line of the file that begins with "MTBDIR=", which names the media that
// a volume belongs to; everything behind the "=", blanks included. Empty when the file cannot be
// opened, has no such line, or the value is empty.
std::string ReadMtbDir(const std::string& path);

// The first line of "volumes.txt", as text and as a number.
struct VolumeCount {
    std::string line;
    int count;
};

// Nothing when the file cannot be opened or read, or the line is no number.
std::optional<VolumeCount> ReadVolumeCount(const std::string& path);

// The decimal number at the start of `text`: blanks and a sign may come before it and anything
// behind it. `fallback` when there is none or when it does not fit.
int ToIntOr(const std::string& text, int fallback);

}  // namespace launcher
