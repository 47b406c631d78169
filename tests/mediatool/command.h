#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/mediatool/support/mediatool_run.h"
#include "tests/mediatool/support/sample_media.h"

namespace launcher::test {

using mediatool::Layout;
using testing::HasSubstr;
using testing::StartsWith;
using Json = nlohmann::json;

// Why a document does not fit docs/mediatool.schema.json, which says what a program that reads the
// output may rely on; empty for one that does.
std::string SchemaComplaints(const Json& document);

// Runs of mediatool.exe on a medium.
class Command : public testing::Test {
  protected:
    MediatoolRun Run(const std::vector<std::string>& arguments) const {
        return RunMediatool(arguments, scratch.Dir());
    }

    // The output of a run with --json, which has to fit the schema.
    Json Output(const std::vector<std::string>& arguments, unsigned long exitCode = 0) const {
        const MediatoolRun run = Run(arguments);
        EXPECT_EQ(run.exitCode, exitCode) << run.errors;
        EXPECT_EQ(run.errors, "");
        const Json output = Json::parse(run.output);
        EXPECT_EQ(SchemaComplaints(output), "") << run.output;
        return output;
    }

    // A wrong use: one sentence, and nothing else.
    std::string Complaint(const std::vector<std::string>& arguments) const {
        const MediatoolRun run = Run(arguments);
        EXPECT_EQ(run.exitCode, 2u);
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1) << run.errors;
        return run.errors;
    }

    TemporaryFolder scratch;
    SampleMedia media;
};

}  // namespace launcher::test
