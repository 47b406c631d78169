#include "tests/security/support/attacked.h"

#include <windows.h>

#include "tests/security/support/hostile_libraries.h"
#include "tests/support/wine.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

namespace {

std::string UniqueName(const std::string& stem) {
    return stem + "-" + std::to_string(GetCurrentProcessId()) + ".exe";
}

}  // namespace

AttackedTest::AttackedTest()
    : media(scratch.Dir() / "media", UniqueName("setup")),
      control(media.Root() / UniqueName("control")) {
    // Wine starts the process behind its desktop with the first look at it: not within a run.
    GetDesktopWindow();
    stdfs::copy_file(BuiltFile(CONTROL_PROGRAM), control);
}

AttackedRun AttackedTest::RunAttacked(const stdfs::path& program,
                                      const std::vector<std::string>& arguments) const {
    const stdfs::path report = scratch.Dir() / "hostile";
    stdfs::remove(report);
    LauncherStart start{program, arguments, variables, scratch.Dir()};
    start.variables["HOSTILE_REPORT"] = ToUtf8(report);
    LauncherRun run = RunToEnd(start);
    return {std::move(run), HostileLoads(report, program)};
}

}  // namespace launcher::test
