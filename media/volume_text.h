#pragma once

#include <optional>
#include <string>

namespace launcher {

class InputStream;

// The text of the small files that tie the volumes of a split medium together: plain 8-bit text,
// lines ended by LF or CR LF.

// Reads one line, without its LF and without one CR before it. A zero byte is a character like any
// other; it ends the text only where Windows gets it. The stream is in the failed state when there
// was no line.
InputStream& ReadTextLine(InputStream& input, std::string& line);

// The decimal number at the start of `text`: blanks and a sign may come before it and anything
// after it. `fallback` when there is none or when it does not fit.
int ToIntOr(const std::string& text, int fallback);

// The number in the name of an outer volume's marker ("7.txt", "42.txt"); below 1 for any other
// name.
int OuterMarkerNumber(const std::string& name);

// Begins the line of a marker that names the media.
inline constexpr char kMtbDirPrefix[] = "MTBDIR=";

// What follows "MTBDIR=" in the first line that begins with it, blanks included; empty when there
// is no such line.
std::string FindMtbDir(InputStream& input);

// The first line of "volumes.txt", as text and as a number.
struct VolumeCount {
    std::string line;
    int count;
};

// Nothing when there is no line, or when it does not begin with a number that fits.
std::optional<VolumeCount> ParseVolumeCount(InputStream& input);

}  // namespace launcher
