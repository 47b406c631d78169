#include "mediatool/dry_run/environment.h"

#include <windows.h>

#include <cwchar>
#include <set>

#include "fs/encoding.h"

namespace launcher::mediatool {
namespace {

std::optional<std::string> Value(const Environment& environment, const std::string& name) {
    const auto found = environment.find(name);
    if (found == environment.end()) return std::nullopt;
    return found->second;
}

}  // namespace

bool LessName::operator()(const std::string& left, const std::string& right) const {
    const std::wstring a = ToWide(left);
    const std::wstring b = ToWide(right);
    return CompareStringOrdinal(a.c_str(), static_cast<int>(a.size()), b.c_str(),
                                static_cast<int>(b.size()), TRUE) == CSTR_LESS_THAN;
}

Environment CurrentEnvironment() {
    Environment environment;
    wchar_t* const block = GetEnvironmentStringsW();
    for (const wchar_t* entry = block; *entry != L'\0'; entry += std::wcslen(entry) + 1) {
        // The first character may be a "=" that belongs to the name.
        const wchar_t* const equals = std::wcschr(entry + 1, L'=');
        if (equals == nullptr) continue;
        environment[ToNarrow(std::wstring(entry, equals).c_str())] = ToNarrow(equals + 1);
    }
    FreeEnvironmentStringsW(block);
    return environment;
}

void RestoreEnvironment(const Environment& environment) {
    for (const Change& change : Changes(CurrentEnvironment(), environment)) {
        const std::wstring value = change.after ? ToWide(*change.after) : std::wstring();
        SetEnvironmentVariableW(ToWide(change.name).c_str(),
                                change.after ? value.c_str() : nullptr);
    }
}

std::vector<Change> Changes(const Environment& before, const Environment& after) {
    std::set<std::string, LessName> names;
    for (const Environment* environment : {&before, &after})
        for (const auto& [name, value] : *environment)
            names.insert(name);
    std::vector<Change> changes;
    for (const std::string& name : names) {
        const Change change{name, Value(before, name), Value(after, name)};
        if (change.before != change.after) changes.push_back(change);
    }
    return changes;
}

}  // namespace launcher::mediatool
