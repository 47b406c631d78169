#pragma once

#include <string>
#include <vector>

namespace launcher::test {

// What the code under test did, step by step, in lines that a reader understands. The fakes that a
// test program links write it; IsolatedTest begins a new one for each test.
inline std::vector<std::string> journal;

inline void Record(const std::string& line) {
    journal.push_back(line);
}

}  // namespace launcher::test
