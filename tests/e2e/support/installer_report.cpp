#include "tests/e2e/support/installer_report.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

bool SameName(std::string_view left, std::string_view right) {
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    return std::ranges::equal(left, right, {}, lower, lower);
}

std::string TakeText(std::string_view& rest) {
    const std::string text(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(std::min(text.size() + 1, rest.size()));
    return text;
}

void Store(InstallerReport& report, std::string_view kind, const std::string& text) {
    if (kind == "commandLine") report.commandLine = text;
    if (kind == "shellArgument") report.shellArguments.push_back(text);
    if (kind == "runtimeArgument") report.runtimeArguments.push_back(text);
    if (kind == "module") report.module = text;
    if (kind == "folder") report.folder = text;
    if (kind == "inheritedFile") report.inheritedFiles.push_back(text);
    if (kind == "variable") {
        // A name may begin with '=': Windows keeps its own variables that way.
        const std::size_t equals = text.find('=', 1);
        report.environment.emplace_back(text.substr(0, equals), text.substr(equals + 1));
    }
}

}  // namespace

std::vector<std::string> InstallerReport::Arguments() const {
    return {shellArguments.begin() + 1, shellArguments.end()};
}

std::optional<std::string> InstallerReport::Variable(const std::string& name) const {
    for (const auto& [variable, value] : environment)
        if (SameName(variable, name)) return value;
    return std::nullopt;
}

std::optional<InstallerReport> ReadInstallerReport(const std::filesystem::path& path) {
    if (!std::filesystem::exists(path)) return std::nullopt;
    const std::string bytes = ReadFile(path);
    InstallerReport report;
    for (std::string_view rest = bytes; !rest.empty();) {
        const std::string kind = TakeText(rest);
        Store(report, kind, TakeText(rest));
    }
    return report;
}

}  // namespace launcher::test
