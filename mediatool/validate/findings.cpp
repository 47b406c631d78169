#include "mediatool/validate/findings.h"

#include <algorithm>
#include <utility>

namespace launcher::mediatool {

void Findings::Error(std::string id, std::string file, std::string what, std::string why,
                     std::string action) {
    Add({Level::Error, std::move(id), std::move(file), std::move(what), std::move(why),
         std::move(action)});
}

void Findings::Warning(std::string id, std::string file, std::string what, std::string why,
                       std::string action) {
    Add({Level::Warning, std::move(id), std::move(file), std::move(what), std::move(why),
         std::move(action)});
}

void Findings::Note(std::string id, std::string file, std::string what, std::string why,
                    std::string action) {
    Add({Level::Note, std::move(id), std::move(file), std::move(what), std::move(why),
         std::move(action)});
}

std::vector<Finding> Findings::Sorted() const {
    std::vector<Finding> sorted = all_;
    std::ranges::stable_sort(sorted, std::ranges::greater(), &Finding::level);
    return sorted;
}

std::size_t Findings::Count(Level level) const {
    return static_cast<std::size_t>(std::ranges::count(all_, level, &Finding::level));
}

bool Findings::Has(const std::string& id) const {
    return std::ranges::find(all_, id, &Finding::id) != all_.end();
}

}  // namespace launcher::mediatool
