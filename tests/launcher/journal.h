#pragma once

#include <string>
#include <vector>

namespace launcher::test {

// What the code under test did, step by step, in lines that a person can read. The fakes that a
// test program links write it; ClearJournal begins a new one.
const std::vector<std::string>& Journal();
void Record(const std::string& line);
void ClearJournal();

}  // namespace launcher::test
