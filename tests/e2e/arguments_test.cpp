// Any arguments reach the installer as the quoting rules say.

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

using Arguments = std::vector<std::string>;

Arguments Split(const std::string& commandLine) {
    int count = 0;
    const LocalMemory<wchar_t*> split(CommandLineToArgvW(ToWide(commandLine).c_str(), &count));
    Arguments arguments;
    for (int i = 0; i < count; ++i)
        arguments.push_back(ToNarrow(split.Get()[i]));
    return arguments;
}

// The rules, written down once more: quotes around each argument, and one more backslash behind
// one that ends in one.
std::string ExpectedLine(const Media& media, const Arguments& arguments) {
    std::string line =
        "\"" + media.InstallerText(UsualOs()) + "\" \"-CDpath\" \"" + media.Text() + "\"";
    for (const std::string& argument : arguments)
        line += " \"" + argument + (argument.ends_with('\\') ? "\\\"" : "\"");
    return line;
}

// Random arguments made of what is awkward on a command line.
class Generator {
  public:
    explicit Generator(unsigned seed) : random_(seed) {}

    Arguments Vector(const std::vector<std::string>& alphabet) {
        Arguments arguments(1 + Below(8));
        for (std::string& argument : arguments)
            for (std::size_t length = Below(12); length > 0; --length)
                argument += alphabet[Below(alphabet.size())];
        return arguments;
    }

  private:
    std::size_t Below(std::size_t limit) { return random_() % limit; }

    std::mt19937 random_;
};

class GeneratedArguments : public LauncherTableTest<unsigned> {};

TEST_P(GeneratedArguments, ReachTheInstallerByTheRules) {
    const std::vector<std::string> alphabet = {"a", "Z", " ", "\t", "\\", "\\", "\"", "'",  "-",
                                               "=", "%", "^", "&",  "*",  "?",  "é",  "漢", "😀"};
    const Arguments arguments = Generator(GetParam()).Vector(alphabet);
    const Media media = UsualMedia();
    const std::string expected = ExpectedLine(media, arguments);
    const LauncherRun run = Run(media, arguments);
    EXPECT_EQ(run.Installer().commandLine, expected);
    EXPECT_EQ(run.Installer().shellArguments, Split(expected));
}

TEST_P(GeneratedArguments, ReachTheInstallerUnchangedWithoutQuotes) {
    Arguments arguments =
        Generator(GetParam()).Vector({"b", " ", "\\", "\t", "'", "$", "ß", "日", "🎈", "|", ";"});
    // One backslash at the end is taken care of; several become half as many and a quote.
    for (std::string& argument : arguments)
        while (argument.ends_with("\\\\"))
            argument.pop_back();
    const LauncherRun run = Run(UsualMedia(), arguments);
    const Arguments seen = run.Installer().Arguments();
    ASSERT_EQ(seen.size(), arguments.size() + 2);
    EXPECT_TRUE(std::ranges::equal(arguments, Arguments(seen.begin() + 2, seen.end())))
        << testing::PrintToString(seen) << " instead of " << testing::PrintToString(arguments);
    EXPECT_EQ(run.Installer().runtimeArguments, run.Installer().shellArguments);
}

// Fixed seeds, so that every run tests the same arguments.
INSTANTIATE_TEST_SUITE_P(Seeds, GeneratedArguments, testing::Range(1u, 7u));

class AwkwardArguments : public LauncherTest {};

TEST_F(AwkwardArguments, QuoteInsideIsNotEscaped) {
    const LauncherRun run = Run(UsualMedia(), {"a\"b c"});
    EXPECT_THAT(run.Installer().commandLine, testing::EndsWith(" \"a\"b c\""));
}

TEST_F(AwkwardArguments, LongOnesArriveWhole) {
    const std::string text(8000, 'x');
    const Arguments seen = Run(UsualMedia(), {text, text, text}).Installer().Arguments();
    EXPECT_THAT(seen, testing::ElementsAre("-CDpath", testing::_, text, text, text));
}

}  // namespace
}  // namespace launcher::test
