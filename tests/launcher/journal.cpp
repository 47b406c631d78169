#include "tests/launcher/journal.h"

namespace launcher::test {
namespace {

std::vector<std::string> journal;

}  // namespace

const std::vector<std::string>& Journal() {
    return journal;
}

void Record(const std::string& line) {
    journal.push_back(line);
}

void ClearJournal() {
    journal.clear();
}

}  // namespace launcher::test
