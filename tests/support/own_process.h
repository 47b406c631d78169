#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace launcher::test {

// The failed expectations of the running test, to the error stream: the process of a death test
// reports nothing else.
inline void PrintFailures() {
    const auto* result = testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result->total_part_count(); ++i) {
        const testing::TestPartResult& part = result->GetTestPartResult(i);
        std::fprintf(stderr, "%s:%d: %s\n", part.file_name(), part.line_number(), part.message());
    }
}

// Runs `body` in a process of its own, where nothing has been computed and kept yet. Its
// expectations count: a failed one fails the test, and its text is in the report.
template <class Body>
void ExpectInOwnProcess(const Body& body) {
    constexpr int kAllAsExpected = 42;  // an exit code that nothing else gives
    const auto run = [&] {
        body();
        PrintFailures();
        std::exit(testing::Test::HasFailure() ? 1 : kAllAsExpected);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(kAllAsExpected), "");
}

}  // namespace launcher::test
