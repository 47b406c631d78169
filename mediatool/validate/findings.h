#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "fs/path.h"
#include "mediatool/validate/finding_texts.h"

namespace launcher::mediatool {

std::string IdentifierOf(const FindingText& text);
std::string LevelName(Level level);  // "error", as outputs have it

// A row of the table of texts, by its name. A name that is not in it does not compile.
class FindingKind {
  public:
    consteval FindingKind(const char* name) : text_(&Find(name)) {}  // implicit: it is a name

    const FindingText& Text() const { return *text_; }
    bool operator==(const FindingKind&) const = default;

  private:
    static consteval const FindingText& Find(std::string_view name) {
        for (const FindingText& text : findings::kTexts)
            if (text.name == name) return text;
        throw "no such kind of finding";
    }

    const FindingText* text_;
};

// A thousand files of one kind of mistake are one mistake: only some are findings of their own.
inline constexpr std::size_t kFindingsOfOneKind = 5;

// One thing about a medium that its maker should know. Texts are UTF-8 sentences.
struct Finding {
    Level level;
    std::string id;  // names the kind of mistake
    std::string file;
    std::string what;
    std::string why;
    std::string action;
};

// The values %1, %2 ... of a finding's texts.
using Values = std::vector<std::string>;

// A kind of finding, where it `holds`.
struct Case {
    bool holds;
    FindingKind kind;
};
using Cases = std::initializer_list<Case>;

class Findings {
  public:
    void Add(FindingKind kind, const std::string& file, const Values& values = {});
    void Add(FindingKind kind, const Path& file, const Values& values = {}) {
        Add(kind, file.Text(), values);
    }
    void AddAll(Cases cases, const Path& file, const Values& values = {});
    // Only the first that holds; false when none does.
    bool AddFirst(Cases cases, const Path& file, const Values& values = {});

    // The gravest first; those of one level in the order in which they were found. `Shown` is how
    // files and values are, an identifier of thousands of characters for instance: as they are, or
    // for a reader, who gets no characters that a terminal would obey either.
    enum class Shown { Whole, Readable };
    std::vector<Finding> Sorted(Shown shown = Shown::Whole) const;
    std::size_t Count(Level level) const;
    std::size_t Size() const { return all_.size(); }

  private:
    struct Found {
        const FindingText* text;
        std::string file;
        Values values;

        Level level() const { return text->level; }
    };

    std::vector<Found> all_;
};

}  // namespace launcher::mediatool
