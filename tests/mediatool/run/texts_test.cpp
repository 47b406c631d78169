// Small texts: time limits, moments, the form of the launcher's lines, meanings of exit codes.

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "mediatool/base/failures.h"
#include "mediatool/base/json.h"
#include "mediatool/base/sentences.h"
#include "mediatool/run/moment.h"
#include "mediatool/run/report.h"
#include "mediatool/run/streams.h"
#include "mediatool/run/time_limit.h"
#include "tests/support/hook.h"

namespace launcher::mediatool {
namespace {

TEST(TimeLimit, IsANumberWithAUnit) {
    EXPECT_EQ(TimeLimitOf("45"), 45000u);
    EXPECT_EQ(TimeLimitOf("45s"), 45000u);
    EXPECT_EQ(TimeLimitOf("90m"), 90u * 60 * 1000);
    EXPECT_EQ(TimeLimitOf("2h"), 2u * 3600 * 1000);
    EXPECT_EQ(TimeLimitOf("1d"), 24u * 3600 * 1000);
    EXPECT_EQ(TimeLimitOf("366d"), 366ull * 24 * 3600 * 1000);
}

class BadTimeLimit : public testing::TestWithParam<const char*> {};

TEST_P(BadTimeLimit, IsRefused) {
    EXPECT_THROW(TimeLimitOf(GetParam()), BadInput);
}

std::string ComplaintAbout(const std::string& timeLimit) {
    try {
        TimeLimitOf(timeLimit);
    } catch (const BadInput& failure) {
        return failure.what();
    }
    return {};
}

TEST(TimeLimit, OfMoreThanAYearIsRefusedAsSuch) {
    for (const std::string text : {"367d", "31622401", "99999999999999999999d"})
        EXPECT_EQ(ComplaintAbout(text),
                  "--time-limit takes a year at most, 366d, not \"" + text + "\".");
    for (const std::string text : {"soon", "0", "99999999999999999999 years"})
        EXPECT_EQ(ComplaintAbout(text),
                  "--time-limit takes a time such as 90m, 2h or 45s, not \"" + text + "\".");
}

INSTANTIATE_TEST_SUITE_P(Table, BadTimeLimit,
                         testing::Values("", "0", "0m", "m", "-1", "+1", "1.5h", "1 h", "90min",
                                         "90M", "1h30m", "367d", "31622401", " 5",
                                         "99999999999999999999", "18446744073709551615d"));

// 9 July 2027, 20:09:08.765 UTC
constexpr Moment kMoment = 134'596'373'487'650'000;

TEST(MomentText, IsUtcForPrograms) {
    EXPECT_EQ(UtcText(kMoment), "2027-07-09T20:09:08.765Z");
    EXPECT_EQ(UtcText(0), "1601-01-01T00:00:00.000Z");
}

TEST(MomentText, OfTheClockIsTheEndOfTheOneWithTheDate) {
    const std::string text = DateAndClockText(kMoment);
    EXPECT_EQ(text.substr(10, 10), " " + ClockText(kMoment) + " ");
    EXPECT_EQ(ClockText(kMoment).size(), 8u);
    EXPECT_EQ(text.size(), 26u);
}

// The same moment, told by the text and by what it says that this zone is ahead of UTC.
TEST(MomentText, WithTheDateSaysInWhichZoneItIs) {
    const std::string text = DateAndClockText(kMoment);
    const int day = std::stoi(text.substr(8, 2));
    const int minute = (day * 24 + std::stoi(text.substr(11, 2))) * 60 + std::stoi(text.substr(14));
    const int ahead = std::stoi(text.substr(21, 2)) * 60 + std::stoi(text.substr(24, 2));
    EXPECT_EQ(text[20] == '-' ? minute + ahead : minute - ahead, (9 * 24 + 20) * 60 + 9) << text;
}

// A zone that is so many minutes ahead of UTC, or behind.
auto Zone(int minutes) {
    return test::Hook<decltype(&SystemTimeToTzSpecificLocalTime)>(
        "SystemTimeToTzSpecificLocalTime",
        [minutes](auto, auto, const SYSTEMTIME* utc, SYSTEMTIME* local) -> BOOL {
            FILETIME file{};
            SystemTimeToFileTime(utc, &file);
            ULARGE_INTEGER time{{file.dwLowDateTime, file.dwHighDateTime}};
            time.QuadPart += static_cast<ULONGLONG>(minutes * 600'000'000LL);
            file = {time.LowPart, time.HighPart};
            return FileTimeToSystemTime(&file, local);
        });
}

TEST(MomentText, OfZonesOnBothSidesOfUtc) {
    for (const auto& [minutes, text] : {std::pair(330, "2027-07-10 01:39:08 +05:30"),
                                        std::pair(-210, "2027-07-09 16:39:08 -03:30"),
                                        std::pair(-720, "2027-07-09 08:09:08 -12:00"),
                                        std::pair(59, "2027-07-09 21:08:08 +00:59"),
                                        std::pair(0, "2027-07-09 20:09:08 +00:00")}) {
        const auto zone = Zone(minutes);
        EXPECT_EQ(DateAndClockText(kMoment), text);
        EXPECT_EQ(ClockText(kMoment), std::string(text).substr(11, 8));
    }
}

// Down to parts of a second.
TEST(MomentText, OfAZoneIsTheSameAtEveryMoment) {
    const auto zone = Zone(0);
    for (const Moment moment : {Moment{600'000'001}, Moment{599'999'999}})
        EXPECT_THAT(DateAndClockText(moment * 224'000'001), testing::EndsWith(" +00:00"));
}

TEST(MomentText, OfNowIsThatOfTheSystemsClock) {
    SYSTEMTIME before{};
    SYSTEMTIME after{};
    GetSystemTime(&before);
    const std::string text = UtcText(Now());
    GetSystemTime(&after);
    const auto inText = [](const SYSTEMTIME& time) {
        FILETIME file{};
        SystemTimeToFileTime(&time, &file);
        return UtcText(MomentOf(file));
    };
    EXPECT_GE(text, inText(before));
    EXPECT_LE(text, inText(after));
    EXPECT_EQ(std::stoi(text), before.wYear);
}

TEST(MomentText, OfALengthHasHoursInFront) {
    EXPECT_EQ(LengthText(999), "0:00:00");
    EXPECT_EQ(LengthText(3'599'999), "0:59:59");
    EXPECT_EQ(LengthText(3'899'000), "1:04:59");
    EXPECT_EQ(LengthText(360'000'000), "100:00:00");
}

TEST(LauncherLine, BeginsInOneOfFourWays) {
    for (const char* line : {" INFO: a", " WARN: a", "ERROR: a", "       a", "       "}) {
        EXPECT_TRUE(LooksLikeLaunchers(line)) << line;
        EXPECT_EQ(MessageOf(line), std::string(line).substr(7));
    }
    for (const char* line : {"", "a", "INFO: a", "  INFO: a", " info: a", "      a", "ERROR:a"}) {
        EXPECT_FALSE(LooksLikeLaunchers(line)) << line;
        EXPECT_EQ(MessageOf(line), line);
    }
}

WatchedRun RunWith(std::uint32_t exitCode, bool installer, const std::string& box = {}) {
    WatchedRun run;
    run.exitCode = exitCode;
    run.launcher = SeenProcess{4700, false, true};
    if (installer) run.installer = SeenProcess{4711, true, false};
    if (!box.empty()) run.boxes.push_back({{box, false}, 0});
    return run;
}

constexpr char kRefusal[] = "This media is not for Windows operating system.";

std::string Meaning(const WatchedRun& run, bool waits) {
    RunRequest request;
    if (waits) request.arguments = {"-wait"};
    return MeaningOf(run, request);
}

TEST(Meaning, OfTheInstallersCode) {
    EXPECT_EQ(Meaning(RunWith(3010, true), true), "The installer's own.");
    EXPECT_EQ(Meaning(RunWith(1, true), true), "The installer's own.");
    EXPECT_EQ(Meaning(RunWith(3010, false), true),
              "The installer's own, which ended before it was seen, or the launcher's.");
}

TEST(Meaning, OfARefusal) {
    EXPECT_EQ(Meaning(RunWith(1, false, kRefusal), true),
              "The launcher refuses; the message says why.");
}

// Whatever the box says, when nobody else can have ended with that code.
TEST(Meaning, OfABoxThatTellsNoText) {
    EXPECT_EQ(Meaning(RunWith(1, false, "text"), false),
              "The launcher refuses; the message says why.");
}

// Trace messages in boxes refuse nothing.
TEST(Meaning, OfTheNumberOfVolumesAfterBoxes) {
    RunRequest request;
    request.arguments = {"-env", "ZEPAdmODTMultiVolumes=1"};
    EXPECT_EQ(MeaningOf(RunWith(1, false, "The installer was found."), request),
              "The number of volumes, which ZEPAdmODTMultiVolumes asks for; nothing was started.");
}

TEST(Meaning, OfAnInstallerThatCrashed) {
    EXPECT_EQ(MeaningOf(RunWith(1, true, "Cannot wait for process\nrc=0"), {}),
              "The launcher's, for an installer that crashed; see the installer's own log.");
}

TEST(Meaning, WithoutWaiting) {
    EXPECT_EQ(Meaning(RunWith(0, true), false),
              "The launcher has started the installer, and does not wait for it.");
}

TEST(Meaning, OfTheNumberOfVolumes) {
    RunRequest request;
    request.arguments = {"-env", "ZEPAdmODTMultiVolumes=1"};
    const std::string number =
        "The number of volumes, which ZEPAdmODTMultiVolumes asks for; nothing was started.";
    for (const std::uint32_t count : {0u, 1u, 3u, 0x7FFFFFFFu})
        EXPECT_EQ(MeaningOf(RunWith(count, false), request), number);
    request.arguments.emplace_back("-wait");
    EXPECT_EQ(MeaningOf(RunWith(3, false), request), number);
    EXPECT_EQ(MeaningOf(RunWith(1, false, kRefusal), request),
              "The launcher refuses; the message says why.");
    for (const std::uint32_t code : {0x80000000, 0xC0000005})
        EXPECT_THAT(MeaningOf(RunWith(code, false), request), testing::EndsWith("launcher's."));
}

TEST(Meaning, OfAnEndNamesTheInstaller) {
    WatchedRun run = RunWith(124, true);
    run.endedBy = EndedBy::TimeLimit;
    EXPECT_EQ(Meaning(run, true),
              "The time limit is over: the launcher was ended; the installer, process 4711, goes "
              "on.");
    run.installer->stillRunning = false;
    EXPECT_EQ(Meaning(run, true),
              "The time limit is over: the launcher was ended; the installer, process 4711, has "
              "ended.");
    run = RunWith(130, false);
    run.endedBy = EndedBy::Interrupt;
    EXPECT_EQ(Meaning(run, true), "Interrupted: the launcher was ended; no installer was seen.");
    run.launcher.reset();
    EXPECT_EQ(Meaning(run, true), "Interrupted before the launcher was started.");
}

TEST(Meaning, OfAnEndOfAllSaysWhoWasEnded) {
    WatchedRun run = RunWith(124, true);
    run.endedBy = EndedBy::TimeLimit;
    run.installer = SeenProcess{4711, false, true};
    RunRequest request;
    request.endInstaller = true;
    EXPECT_EQ(MeaningOf(run, request),
              "The time limit is over: the launcher was ended; the installer, process 4711, was "
              "ended too.");
    run.installer->stillRunning = true;
    run.installer->wasEnded = false;
    EXPECT_EQ(MeaningOf(run, request),
              "The time limit is over: the launcher was ended; the installer, process 4711, cannot "
              "be ended.");
}

TEST(JsonOfARun, SaysWhyMediatoolFailed) {
    WatchedRun run = RunWith(125, false);
    run.endedBy = EndedBy::Failure;
    run.failure = "no more memory";
    EXPECT_EQ(JsonOf(run)["endedBy"], "failure");
    EXPECT_EQ(JsonOf(run)["error"], "no more memory");
}

TEST(JsonOfARun, HasAllOfIt) {
    WatchedRun run = RunWith(3010, true, "A box");
    run.milliseconds = 61250;
    run.boxes.front().at = kMoment;
    run.boxes.push_back({{"Where is it?", true}, kMoment + 10'000'000});
    run.lines = {{"one", Origin::LauncherOutput, kMoment},
                 {"two", Origin::LauncherErrors, kMoment},
                 {"three", Origin::InstallerOutput, kMoment},
                 {"four", Origin::InstallerErrors, kMoment}};
    run.linesLeftOut = 5;
    run.bytesLeftOut = 6;
    const auto json = [&run] { return JsonOf(run); };
    EXPECT_EQ(json(), Json::parse(R"({
        "schema": 1, "command": "run", "exitCode": 3010, "endedBy": "launcher", "seconds": 61.25,
        "boxes": [
            {"text": "A box", "dialog": false, "at": "2027-07-09T20:09:08.765Z"},
            {"text": "Where is it?", "dialog": true, "at": "2027-07-09T20:09:09.765Z"}],
        "lines": [
            {"text": "one", "stream": "output", "at": "2027-07-09T20:09:08.765Z"},
            {"text": "two", "stream": "errors", "at": "2027-07-09T20:09:08.765Z"},
            {"text": "three", "stream": "installer-output", "at": "2027-07-09T20:09:08.765Z"},
            {"text": "four", "stream": "installer-errors", "at": "2027-07-09T20:09:08.765Z"}],
        "linesLeftOut": 5, "bytesLeftOut": 6,
        "launcher": {"processId": 4700, "stillRunning": false},
        "installer": {"processId": 4711, "stillRunning": true}, "error": null})"));
    run = {};
    for (const auto& [endedBy, name] :
         {std::pair(EndedBy::TimeLimit, "time-limit"), std::pair(EndedBy::Interrupt, "interrupt"),
          std::pair(EndedBy::Failure, "failure")}) {
        run.endedBy = endedBy;
        EXPECT_EQ(json()["endedBy"], name);
    }
    EXPECT_EQ(json()["launcher"], nullptr);
    EXPECT_EQ(json()["installer"], nullptr);
}

TEST(JsonText, IsAscii) {
    const std::string text = "Gr\u00F6\u00DFe \x7F";
    const std::string printed = Printed(Json{{"text", text}});
    EXPECT_EQ(printed, "{\n  \"text\": \"Gr\\u00f6\\u00dfe \\u007f\"\n}\n");
    EXPECT_EQ(Json::parse(printed)["text"], text);
    EXPECT_EQ(Printed("\xE9"), "\"\\ufffd\"\n");
}

TEST(HarmlessText, HasNoControlCharactersButTabsAndLineEnds) {
    EXPECT_EQ(Harmless("a\tb\nc \x1B[2J \x7F \r \xC2\x9B Gr\u00F6\u00DFe"),
              "a\tb\nc \\x1B[2J \\x7F \\x0D \\x9B Gr\u00F6\u00DFe");
    EXPECT_EQ(OnOneLine("a\nb\r\n"), "a\\x0Ab");
}

// "setup\u202Efdp.exe" would look like "setupexe.pdf".
TEST(HarmlessText, HasNoCharactersThatTurnOthersOrCannotBeSeen) {
    EXPECT_EQ(Harmless("a\u202Eb\u2066c\u061Cd\u200B\u2028\uFEFF"),
              "a\\u202Eb\\u2066c\\u061Cd\\u200B\\u2028\\uFEFF");
    // Next to those, joined letters and signs, and bytes that are no text.
    for (const std::string text :
         {"\u061B\u200A\u202F\u205F\u2070\uFEFE", "\u0645\u06CC\u200C\u062E",
          "\U0001F468\u200D\U0001F469", "\xE2\x80", "\x80\x9B", "\xFF\xAE\xAE\xAE"})
        EXPECT_EQ(Harmless(text), text);
}

TEST(ControlsShownInText, LeavesOtherCharacters) {
    EXPECT_EQ(ControlsShown("\tb\r\xC2\x9B\u202E\uFEFF", "\t"), "\tb\\x0D\\x9B\u202E\uFEFF");
}

TEST(Summary, ShowsACodeThatIsNotLargeAsItIs) {
    EXPECT_EQ(TextOf(RunWith(0x7FFFFFFF, false), {}, false),
              "Exit code\n"
              "  2147483647: The launcher's; not one that it has of its own.\n"
              "Time\n  0:00:00\n");
}

TEST(Summary, ShowsALargeCodeAsPeopleKnowItToo) {
    EXPECT_EQ(TextOf(RunWith(0xC0000005, false), {}, false),
              "Exit code\n"
              "  3221225477 (0xC0000005): The launcher's; not one that it has of its own.\n"
              "Time\n  0:00:00\n");
}

TEST(Summary, HasAllOfIt) {
    WatchedRun run = RunWith(0x80000000, false, "Bad -env argument");
    run.boxes.push_back({{"Where is it?\r\nThere?\r\n", true}, 0});
    run.milliseconds = 3'661'000;
    EXPECT_EQ(TextOf(run, {}, false),
              "Boxes, each of which would have waited\n"
              "  Bad -env argument\n"
              "  Where is it?\n"
              "    There?\n"
              "What to do\n"
              "  Bad -env argument\n"
              "    give it its value\n"
              "Exit code\n"
              "  2147483648 (0x80000000): The launcher's; not one that it has of its own.\n"
              "Time\n"
              "  1:01:01\n");
}

// And gives no advice on what nobody knows.
TEST(Summary, ShowsABoxOfSeveralLinesAsOne) {
    const WatchedRun run = RunWith(1, false, "First\r\nsecond\x1B\r\n");
    EXPECT_EQ(TextOf(run, {}, false),
              "Boxes, each of which would have waited\n"
              "  First\n    second\\x1B\n"
              "Exit code\n  1: The launcher refuses; the message says why.\nTime\n  0:00:00\n");
}

TEST(Summary, GivesRemediesInTheOrderOfTheMessages) {
    WatchedRun run = RunWith(1, false, "Bad -env argument");
    run.lines = {{" WARN: Bad -installerPath argument", Origin::LauncherOutput, 3},
                 {"ERROR: -List must be used with the -SoftMgt flag.", Origin::LauncherErrors, 1}};
    run.boxes.back().at = 2;
    EXPECT_EQ(TextOf(run, {}, false),
              "Boxes, each of which would have waited\n"
              "  Bad -env argument\n"
              "What to do\n"
              "  -List must be used with the -SoftMgt flag.\n    add -SoftMgt\n"
              "  Bad -env argument\n    give it its value\n"
              "  Bad -installerPath argument\n    give it its value\n"
              "Exit code\n  1: The launcher refuses; the message says why.\nTime\n  0:00:00\n");
}

TEST(Summary, NamesEachRemedyOnce) {
    WatchedRun run = RunWith(1, false, "Bad -env argument");
    run.boxes.push_back(run.boxes.front());
    run.lines.push_back({" WARN: Bad -env argument", Origin::LauncherOutput, 0});
    run.lines.push_back({"Bad -installerPath argument", Origin::InstallerOutput, 0});
    EXPECT_EQ(TextOf(run, {}, false),
              "Boxes, each of which would have waited\n"
              "  Bad -env argument\n  Bad -env argument\n"
              "What to do\n  Bad -env argument\n    give it its value\n"
              "Exit code\n  1: The launcher refuses; the message says why.\nTime\n  0:00:00\n");
}

}  // namespace
}  // namespace launcher::mediatool
