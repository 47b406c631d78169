#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

namespace launcher {

// The one separator of every path this program writes.
inline constexpr char kBackslash[] = "\\";

// A normalised Windows path in UTF-8 that knows where its root ends.
//
// The text has backslashes only, none of them doubled (except the two that begin a network path)
// and none at the end, and no quotes around it. A path with an invalid root ("1:\x", "\\srv") is
// the empty path: nothing here throws or reports.
class Path {
  public:
    // The values of RootEnd() that are no index.
    static constexpr std::int64_t kRelative = -1;
    static constexpr std::int64_t kNotAnalysed = -2;

    Path() = default;
    explicit Path(std::string text);

    Path(const Path&) = default;
    Path& operator=(const Path&) = default;
    // A moved-from path is empty and not analysed.
    Path(Path&& other) noexcept;
    Path& operator=(Path&& other) noexcept;
    ~Path() = default;

    const std::string& Text() const { return text_; }

    // The index in Text() of the last character of the root: 1 for a drive path (the colon), the
    // last character of the share name for a network path. kRelative for a relative or empty path;
    // a single leading backslash counts as relative.
    std::int64_t RootEnd() const { return rootEnd_; }

  private:
    std::string text_;
    std::int64_t rootEnd_ = kRelative;
};

bool IsEmpty(const Path& path);

// `left`, one backslash and `right`, normalised. Joined onto the empty path, the result begins
// with a single backslash and is relative.
Path Join(const Path& left, const std::string& right);

// Each component joined onto the path before it, in order.
Path Join(Path path, std::initializer_list<std::string> components);

// The path without its last component. Empty for the empty path, a bare name, a drive and a
// network share; the parent of "C:\dir" is "C:".
Path Parent(const Path& path);

// The last component; empty for a drive, a network share and the empty path.
std::string FileName(const Path& path);

// What Path's constructor does to the text, without the root analysis: removes one pair of outer
// quotes, turns slashes into backslashes, collapses doubled ones from index 1 on, and cuts
// trailing ones.
void NormalizePathText(std::string& text);

// The path of `target` relative to `base`, both rooted. Empty when the roots differ or when the
// two are the same; components are compared exactly.
Path RelativePath(const Path& target, const Path& base);

}  // namespace launcher
