#pragma once

#include <gtest/gtest.h>

#include "tests/support/handle_count.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

// A test with a folder of its own, which leaves no handles open, whether or not what it does fails.
class FileTest : public testing::Test {
  private:
    SameHandlesAtTheEnd handles_;

  protected:
    TemporaryFolder folder_;
};

}  // namespace launcher::test
