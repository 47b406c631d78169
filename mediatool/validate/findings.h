#pragma once

#include <string>
#include <vector>

namespace launcher::mediatool {

// How much a finding matters: an error makes the launcher do something else than the media's maker
// meant; a warning may do so one day, or on some machines; a note is only said.
enum class Level { Note, Warning, Error };

// One thing about a media that its maker should know. Texts are UTF-8 sentences.
struct Finding {
    Level level;
    std::string id;  // names the kind of mistake, for ever: "count-file-bom"
    std::string file;
    std::string what;
    std::string why;
    std::string action;
};

class Findings {
  public:
    void Add(Finding finding) { all_.push_back(std::move(finding)); }
    void Error(std::string id, std::string file, std::string what, std::string why,
               std::string action);
    void Warning(std::string id, std::string file, std::string what, std::string why,
                 std::string action);
    void Note(std::string id, std::string file, std::string what, std::string why,
              std::string action);

    // The gravest first; those of one level in the order in which they were found.
    std::vector<Finding> Sorted() const;
    std::size_t Count(Level level) const;
    bool Has(const std::string& id) const;

  private:
    std::vector<Finding> all_;
};

}  // namespace launcher::mediatool
