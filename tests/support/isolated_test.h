#pragma once

#include <gmock/gmock.h>

#include <map>
#include <string>

#include "tests/support/journal.h"

namespace launcher::test {

// A test that begins with an empty journal and may change the process environment: what it changed
// is undone at its end.
class IsolatedTest : public testing::Test {
  protected:
    IsolatedTest();
    ~IsolatedTest() override;

  private:
    const std::map<std::wstring, std::wstring> environment_;
};

}  // namespace launcher::test
