#include "mediatool/media/remedies.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace launcher::mediatool {
namespace {

TEST(Remedies, StandInTheThirdColumnOfTheTables) {
    const std::vector<Remedy> remedies = RemediesOn(
        "Text with `code`.\n"
        "| Message | Cause | Remedy |\n| --- | --- | --- |\n"
        "| `One`, `two`, in words | why | do `this` |\r\n"
        "| `Three` | why | |\n"
        "| `Four` | no remedy here |\n");
    ASSERT_EQ(remedies.size(), 3u);
    EXPECT_EQ(remedies[0].message, "One");
    EXPECT_EQ(remedies[0].remedy, "do this");
    EXPECT_EQ(remedies[1].message, "two");
    EXPECT_EQ(remedies[1].remedy, "do this");
    EXPECT_EQ(remedies[2].message, "Three");
    EXPECT_EQ(remedies[2].remedy, "");
}

TEST(Remedies, StandInRowsOfThreeColumns) {
    const std::vector<Remedy> remedies = RemediesOn(
        "| `One` || do one |\n"
        "| `Four` | b | c | d |\n"
        "| in words | b | c |\n"
        "| `Two` |  `why` it is  | do `two` |");
    ASSERT_EQ(remedies.size(), 2u);
    EXPECT_EQ(remedies[0].message, "One");
    EXPECT_EQ(remedies[0].cause, "");
    EXPECT_EQ(remedies[0].remedy, "do one");
    EXPECT_EQ(remedies[1].message, "Two");
    EXPECT_EQ(remedies[1].cause, "why it is");
    EXPECT_EQ(remedies[1].remedy, "do two");
}

// Its quote is that before the name.
TEST(Remedies, OfAMessageWhosePiecesOverlapAreNone) {
    EXPECT_FALSE(KnownMessage("Invalid Installer media, \" does not exist"));
}

TEST(Remedies, OfAnEmptyPageAreNone) {
    EXPECT_THAT(RemediesOn(""), testing::IsEmpty());
    EXPECT_THAT(RemediesOn("\n"), testing::IsEmpty());
}

TEST(Remedies, OfThePageAreFoundByTheWholeMessage) {
    EXPECT_EQ(RemedyFor("Bad -env argument"), "give it its value");
    EXPECT_EQ(RemedyFor("-Rollback must be used with the -SoftMgt flag."), "add -SoftMgt");
    EXPECT_EQ(RemedyFor("-SoftMgt must be used with another flag (either -List, -Check, -Commit or "
                        "-Rollback)."),
              "add the action");
    EXPECT_EQ(RemedyFor("Invalid Installer media, \"D:\\inst\\x.exe\" does not exist"),
              "correct the folder");
    EXPECT_THAT(*RemedyFor("Setup failed to create process\nx\nrc=2\nmsg=y\r\n"),
                testing::StartsWith("the number after rc= says why"));
    EXPECT_EQ(KnownMessage("Bad -env argument")->cause,
              "the option is the last word of the command line");
}

TEST(Remedies, AreNoneForOtherMessages) {
    EXPECT_EQ(RemedyFor(""), std::nullopt);
    EXPECT_EQ(RemedyFor("64-bit OS"), std::nullopt);
    EXPECT_EQ(RemedyFor("It says: Bad -env argument"), std::nullopt);
    EXPECT_EQ(RemedyFor("Invalid Installer media, \"D:\\inst\\x.exe\""), std::nullopt);
}

// Of a page that is not read as it was meant.
TEST(Remedies, AreThereForEveryKindOfMessage) {
    const std::vector<Remedy> remedies = RemediesOn(kMessagesPage);
    EXPECT_GE(remedies.size(), 20u);
    for (const Remedy& remedy : remedies) {
        EXPECT_EQ(RemedyFor(remedy.message), remedy.remedy) << remedy.message;
        EXPECT_GE(remedy.message.size(), 15u) << remedy.message;
    }
}

}  // namespace
}  // namespace launcher::mediatool
