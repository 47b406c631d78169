// A rehearsal has no effect: whatever it comes to, it calls nothing that writes, starts, shows or
// deletes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "mediatool/dry_run/dry_run.h"
#include "tests/mediatool/agreement/case.h"
#include "tests/mediatool/effect_guard.h"
#include "tests/support/isolated_test.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

using mediatool::DryRun;
using mediatool::DryRunRequest;
using testing::ExitedWithCode;

DryRun Guarded(const DryRunRequest& request) {
    const EffectGuard guard;
    return mediatool::RunDry(request);
}

DryRunRequest RequestOf(const Case& made, const TemporaryFolder& temp) {
    DryRunRequest request;
    request.media = ToUtf8(made.launcher.parent_path());
    request.arguments = made.arguments;
    request.environment = {{"TEMP", temp.Text()}};
    for (const auto& variable : made.variables)
        request.environment.push_back(variable);
    if (made.picked) request.machine.picked = ToUtf8(*made.picked);
    request.machine.isAdministrator = std::ranges::count(made.machine, "no") == 0;
    request.machine.hasOldWebLibrary = std::ranges::count(made.machine, "--old-web-library") > 0;
    return request;
}

class RehearsalTest : public IsolatedTest {
  protected:
    TemporaryFolder temp_;
    TemporaryFolder work_;
};

// The same media and command lines as are compared with the launcher, and others.
TEST_F(RehearsalTest, HasNoEffect) {
    constexpr unsigned kFirstSeed = 1000;
    constexpr unsigned kCases = 40;
    std::size_t started = 0;
    std::size_t copies = 0;
    std::size_t failedCopies = 0;
    std::size_t boxes = 0;
    bool areSomeLeftOut = false;
    for (unsigned seed = kFirstSeed; seed < kFirstSeed + kCases; ++seed) {
        SCOPED_TRACE(seed);
        const TemporaryFolder files;
        const std::optional<Case> made = MakeCase(seed, files.Dir(), work_.Dir());
        if (!made) {
            areSomeLeftOut = true;
            continue;
        }
        const DryRun run = Guarded(RequestOf(*made, temp_));
        started += run.started;
        copies += run.copy.made;
        failedCopies += run.copy.reason == "The copy fails.";
        boxes += std::ranges::any_of(run.journal.messages, &mediatool::Message::box);
    }
    // Each end was among them.
    EXPECT_GT(started, 0u);
    EXPECT_GT(copies, 0u);
    EXPECT_GT(failedCopies, 0u);
    EXPECT_GT(boxes, 0u);
    EXPECT_TRUE(std::filesystem::is_empty(temp_.Dir()));
    if (areSomeLeftOut) GTEST_SKIP() << kNoNetwork;
}

// What a process of the launcher remembers of its first answers is forgotten with the rehearsal.
TEST_F(RehearsalTest, RemembersNothingOfTheOneBefore) {
    const TemporaryFolder files;
    const std::optional<Case> made = MakeCase(1004, files.Dir(), work_.Dir());
    if (!made) GTEST_SKIP() << kNoNetwork;
    DryRunRequest request = RequestOf(*made, temp_);
    request.arguments = {};
    const auto boxes = [&request](bool isAdministrator, const char* traceSwitch) {
        request.machine.isAdministrator = isAdministrator;
        request.environment = {{"ZEP_TraceMsgBox", traceSwitch}};
        const std::vector<mediatool::Message> messages = Guarded(request).journal.messages;
        return std::ranges::count(messages, true, &mediatool::Message::box);
    };
    const auto usual = boxes(true, "");
    EXPECT_GT(boxes(true, "1"), usual);
    EXPECT_EQ(boxes(false, ""), usual + 1);
    EXPECT_EQ(boxes(true, ""), usual);
}

struct Effect {
    const char* name;
    void (*cause)();
};

class EffectGuardDeathTest : public testing::TestWithParam<Effect> {};

TEST_P(EffectGuardDeathTest, EndsTheProcess) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto causeIt = [] {
        const EffectGuard guard;
        GetParam().cause();
    };
    EXPECT_EXIT(causeIt(), ExitedWithCode(EffectGuard::kEffect), GetParam().name);
}

constexpr wchar_t kNoFile[] = L"\\\\?\\no such file";

INSTANTIATE_TEST_SUITE_P(
    Kinds, EffectGuardDeathTest,
    testing::Values(Effect{"SetFileAttributes", [] { SetFileAttributesW(kNoFile, 0); }},
                    Effect{"DeleteFile", [] { DeleteFileW(kNoFile); }},
                    Effect{"CreateDirectory", [] { CreateDirectoryW(kNoFile, nullptr); }},
                    Effect{"CreateFileW",
                           [] {
                               CreateFileW(kNoFile, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0,
                                           nullptr);
                           }},
                    Effect{"CreateProcess",
                           [] {
                               STARTUPINFOW startup{};
                               PROCESS_INFORMATION process{};
                               wchar_t line[] = L"no such program";
                               CreateProcessW(nullptr, line, nullptr, nullptr, FALSE, 0, nullptr,
                                              nullptr, &startup, &process);
                           }},
                    Effect{"MessageBox", [] { MessageBoxW(nullptr, L"", nullptr, 0); }},
                    Effect{"LoadLibrary", [] { LoadLibraryW(L"no such library"); }},
                    Effect{"CoCreateInstance",
                           [] {
                               using Function = void (*)();
                               reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(
                                   GetModuleHandleW(L"kernel32"), "CoCreateInstance")))();
                           }}),
    [](const auto& row) { return std::string(row.param.name); });

// What a rehearsal needs passes.
TEST(EffectGuard, LetsFilesBeRead) {
    const TemporaryFolder folder;
    const std::wstring file = folder.Dir().wstring() + L"\\file";
    WriteFile(file, "text");
    HANDLE handle = INVALID_HANDLE_VALUE;
    {
        const EffectGuard guard;
        handle = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                             nullptr);
        CloseHandle(handle);
    }
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(DeleteFileW(file.c_str()));  // lifted
}

}  // namespace
}  // namespace launcher::test
