// Every command in the pages for administrators and makers of media is run here, and its output
// compared with what the page shows.
//
// A block of kind "console" holds a prompt with a mediatool command and its output; a line "..."
// stands for any lines. A block of kind "bat" is a batch script, and the block of kind "text" after
// it what the script prints; one without a medium is not run. The comment "<!-- media: NAME -->"
// before a block says which media the drive M: holds; ", no administrator" after the name, that the
// user has no such rights. Times are any times.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string_view>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/e2e/support/launcher_run.h"
#include "tests/e2e/support/media.h"
#include "tests/mediatool/support/mediatool_run.h"
#include "tests/support/links.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

struct Block {
    std::string page;
    int line = 0;
    std::string kind;
    std::string media;
    bool isAdministrator = true;
    std::vector<std::string> lines;
};

constexpr std::string_view kNoAdministrator = ", no administrator";

std::vector<Block> BlocksOf(const std::string& page) {
    std::istringstream input(ReadFile(FromUtf8(SOURCE_FOLDER) / "docs" / page));
    std::vector<Block> blocks;
    std::string media;
    Block block;
    bool inBlock = false;
    int number = 0;
    for (std::string line; std::getline(input, line);) {
        ++number;
        if (line.ends_with('\r')) line.pop_back();
        if (line.starts_with("```")) {
            if (inBlock) blocks.push_back(block);
            inBlock = !inBlock;
            const bool isOther = media.ends_with(kNoAdministrator);
            const std::string name =
                media.substr(0, media.size() - (isOther ? kNoAdministrator.size() : 0));
            block = {page, number, line.substr(3), name, !isOther, {}};
            if (!inBlock) media.clear();
        } else if (inBlock) {
            block.lines.push_back(line);
        } else if (line.starts_with("<!-- media: ")) {
            media = line.substr(12, line.find(" -->") - 12);
        }
    }
    return blocks;
}

// The media that the pages speak of.
void MakeMedia(const std::string& name, const stdfs::path& drive) {
    const auto volumes = [&](std::initializer_list<int> others) {
        Media media(drive / "Set" / "1");
        media.AddInstaller("win_b64").AddMarker("win_b64").MakeSplit(3, "PRODUCT-2027");
        for (const int k : others) {
            WriteVolumeMarker(drive / "Set" / std::to_string(k), k, "PRODUCT-2027");
            WriteFile(drive / "Set" / std::to_string(k) / "content.cab", "content");
        }
    };
    if (name == "ordinary") Media(drive / "Media").AddInstaller("win_b64").AddMarker("win_b64");
    if (name == "without installer") Media(drive / "Media").AddMarker("win_b64");
    if (name == "three volumes") volumes({2, 3});
    if (name == "volume 3 missing") volumes({2});
    if (name == "installer in bin") {
        Media(drive / "Media").AddInstaller("win_b64").AddMarker("win_b64");
        const stdfs::path folder = drive / "Media" / "inst" / "win_b64";
        stdfs::rename(folder / "code" / "bin", folder / "bin");
    }
    if (name == "content only") {
        Media(drive / "Set" / "1").AddInstaller("win_b64").AddMarker("win_b64");
        for (const char* folder : {"2", "3"}) {
            stdfs::create_directories(drive / "Set" / folder);
            WriteFile(drive / "Set" / folder / "content.cab", "content");
        }
    }
    if (name == "parts") {
        for (const char* folder : {"1", "2"}) {
            stdfs::create_directories(drive / "Parts" / folder);
            WriteFile(drive / "Parts" / folder / "content.cab", "content");
        }
    }
    if (name == "byte-order mark") {
        volumes({2, 3});
        WriteFile(drive / "Set" / "1" / "inst" / "volumes.txt",
                  "\xEF\xBB\xBF"
                  "3\r\n");
    }
    if (name == "unfinished") {
        volumes({2, 3});
        WriteFile(drive / "Set" / "1" / "mediatool-unfinished.txt", "");
    }
    if (name == "damaged") {
        volumes({2, 3});
        const stdfs::path set = drive / "Set";
        WriteFile(set / "2" / "data.bin", "2");
        RunMediatool({"checksum", ToUtf8(set / "1")}, drive);
        WriteFile(set / "1" / "media.db", "damaged");
        stdfs::remove_all(set / "3");
        stdfs::copy(set / "2", set / "3");
        stdfs::rename(set / "3" / "2.txt", set / "3" / "3.txt");
    }
    if (name == "wrong marker") {
        volumes({2, 3});
        WriteFile(drive / "Set" / "2" / "2.txt", "MTBDIR=PRODUCT-2026\r\n");
    }
}

std::string WithoutTimes(const std::string& line) {
    static const std::regex time("[0-9]+:[0-9][0-9]:[0-9][0-9]");
    return std::regex_replace(line, time, "TIME");
}

std::vector<std::string> Lines(const std::string& text) {
    std::istringstream input(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(input, line);) {
        while (line.ends_with('\r') || line.ends_with(' '))
            line.pop_back();
        lines.push_back(WithoutTimes(line));
    }
    while (!lines.empty() && lines.back().empty())
        lines.pop_back();
    return lines;
}

// A line "..." of the page stands for any lines.
bool Fits(const std::vector<std::string>& page, std::size_t i, const std::vector<std::string>& real,
          std::size_t j) {
    if (i == page.size()) return j == real.size();
    if (page[i] == "...") {
        for (std::size_t next = j; next <= real.size(); ++next)
            if (Fits(page, i + 1, real, next)) return true;
        return false;
    }
    return j < real.size() && WithoutTimes(page[i]) == real[j] && Fits(page, i + 1, real, j + 1);
}

std::vector<std::string> Split(const std::string& commandLine) {
    int count = 0;
    const LocalMemory<wchar_t*> split(CommandLineToArgvW(ToWide(commandLine).c_str(), &count));
    std::vector<std::string> words;
    for (int i = 0; i < count; ++i)
        words.push_back(ToNarrow(split.Get()[i]));
    return words;
}

class Documentation : public testing::TestWithParam<const char*> {
  protected:
    static std::map<std::string, std::string> Variables(const Block& block) {
        return {{"TEMP", "C:\\Temp"},
                {"PATH", "C:\\windows\\system32;C:\\windows"},
                {"ZEPProcessNotAdmin", block.isAdministrator ? "" : "1"}};
    }

    // A prompt, the command after it, and what follows until the next prompt.
    void RunConsole(const Block& block) {
        for (std::size_t i = 0; i < block.lines.size();) {
            const std::string prompt = "M:\\> mediatool ";
            ASSERT_TRUE(block.lines[i].starts_with(prompt)) << block.lines[i];
            const std::string command = block.lines[i].substr(sizeof "M:\\>");
            std::vector<std::string> shown;
            for (++i; i < block.lines.size() && !block.lines[i].starts_with("M:\\> "); ++i)
                shown.push_back(block.lines[i]);
            while (!shown.empty() && shown.back().empty())
                shown.pop_back();
            std::vector<std::string> arguments = Split(command);
            arguments.erase(arguments.begin());
            const MediatoolRun run = RunMediatool(arguments, L"M:\\", Variables(block));
            const std::string all = run.errors + run.output;
            EXPECT_TRUE(Fits(shown, 0, Lines(all), 0))
                << block.page << ", line " << block.line << ": " << command << "\nprints:\n"
                << all;
            ++commands_;
        }
    }

    std::size_t commands_ = 0;
};

TEST_P(Documentation, ShowsWhatMediatoolPrints) {
    for (const Block& block : BlocksOf(GetParam())) {
        if (block.kind != "console") continue;
        const TemporaryFolder folder;
        const MappedDrive drive("m:", folder.Dir());
        MakeMedia(block.media, folder.Dir());
        RunConsole(block);
    }
    EXPECT_GE(commands_, 3u);
}

INSTANTIATE_TEST_SUITE_P(Pages, Documentation, testing::Values("administrators.md", "media.md"),
                         [](const auto& page) {
                             std::string name = page.param;
                             return name.substr(0, name.find('.'));
                         });

std::set<std::string> NumbersIn(const std::string& text) {
    static const std::regex number("[0-9]+");
    std::set<std::string> numbers;
    for (std::sregex_iterator found(text.begin(), text.end(), number), end; found != end; ++found)
        numbers.insert(found->str());
    return numbers;
}

// The exit codes in a column of the page's table: those of the rows with anything in it.
std::set<std::string> ExitCodesInColumn(std::size_t column) {
    std::istringstream page(ReadFile(FromUtf8(SOURCE_FOLDER) / "docs" / "administrators.md"));
    std::set<std::string> codes;
    bool isInSection = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("## ")) isInSection = line.starts_with("## Exit codes");
        if (!isInSection || line.find_first_of("0123456789") != 2) continue;
        std::istringstream row(line);
        std::vector<std::string> cells;
        for (std::string cell; std::getline(row, cell, '|');)
            cells.push_back(cell);
        if (cells.at(column + 1) != " ") codes.merge(NumbersIn(cells.at(1)));
    }
    return codes;
}

TEST(ExitCodes, OfThePageAreThoseOfTheHelp) {
    const std::pair<const char*, std::size_t> columns[] = {
        {"run", 1}, {"dry-run", 2}, {"validate", 3}, {"create", 4}, {"checksum", 4}};
    for (const auto& [command, column] : columns) {
        const std::string help = RunMediatool({"help", command}, "C:\\").output;
        const std::size_t place = help.find("Exit code:");
        ASSERT_NE(place, std::string::npos) << command;
        EXPECT_EQ(ExitCodesInColumn(column), NumbersIn(help.substr(place))) << command;
    }
}

// The scripts of the page for administrators, each with the stand-in installer, whose exit code is
// 3010.
void RunScripts(const std::string& kind, const std::string& fileName,
                const std::string& commandLine) {
    const std::vector<Block> blocks = BlocksOf("administrators.md");
    std::size_t scripts = 0;
    for (std::size_t i = 0; i + 1 < blocks.size(); ++i) {
        const Block& block = blocks[i];
        if (block.kind != kind || block.media.empty()) continue;
        ASSERT_EQ(blocks[i + 1].kind, "text") << "what does it print? line " << block.line;
        const TemporaryFolder folder;
        const MappedDrive drive("m:", folder.Dir());
        MakeMedia(block.media, folder.Dir());
        std::string script;
        for (const std::string& line : block.lines)
            script += line + "\r\n";
        folder.Write(fileName, script);
        stdfs::copy_file(BuiltFile(MEDIATOOL_PROGRAM), folder.Dir() / "mediatool.exe");
        // As long as mediatool needs to see it, whose text says so else.
        const MediatoolRun run =
            RunCommandLine(commandLine, L"M:\\",
                           {{"STANDIN_LASTS", "1000"}, {"STANDIN_EXIT", "3010"}, {"TEMP", "M:\\"}});
        EXPECT_TRUE(Fits(blocks[i + 1].lines, 0, Lines(run.output), 0))
            << "line " << block.line << " prints:\n"
            << run.output << "errors: " << run.errors;
        ++scripts;
    }
    EXPECT_GT(scripts, 0u);
}

TEST(DocumentedScripts, OfTheCommandProcessor) {
    RunScripts("bat", "script.bat", "cmd.exe /d /c M:\\script.bat");
}

TEST(DocumentedScripts, OfPowerShell) {
    if (IsWine()) GTEST_SKIP() << "Wine has no PowerShell";
    RunScripts("powershell", "script.ps1",
               "powershell.exe -NoProfile -ExecutionPolicy Bypass -File M:\\script.ps1");
}

}  // namespace
}  // namespace launcher::test
