#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "mediatool/base/failures.h"
#include "mediatool/create/create.h"
#include "tests/mediatool/validate/mistake_row.h"

namespace launcher::test {

using mediatool::BadInput;
using mediatool::Create;
using mediatool::CreateRequest;
using mediatool::Creation;
using mediatool::Refused;

// A request for two volumes, to be changed, and what becomes of it.
class Creating : public testing::Test {
  protected:
    Creating() {
        request.id = "SET";
        request.layout = Layout::Siblings;
        request.volumes = 2;
        request.out = scratch.Text("out");
    }

    std::string Complaint() {
        try {
            Create(request);
        } catch (const BadInput& failure) {
            return std::string("wrong use: ") + failure.what();
        } catch (const Refused& failure) {
            return std::string("refused: ") + failure.what();
        }
        return "none";
    }

    TemporaryFolder scratch;
    CreateRequest request;
};

// With force, and content of which one file is there already, out\1\a.bin, with an older text.
class Replacing : public Creating {
  protected:
    Replacing() {
        request.force = true;
        scratch.Write("out/1/a.bin", "old");
        scratch.Write("one/a.bin", "new");
        scratch.Write("two/b.bin", "new");
        request.from = {scratch.Text("one"), scratch.Text("two")};
    }
};

}  // namespace launcher::test
