#include "tests/e2e/support/environment_block.h"

#include <windows.h>

#include <cwchar>
#include <string_view>

#include "fs/encoding.h"

namespace launcher::test {
namespace {

// The order that Windows asks of a block: by name, whatever the case.
struct ByName {
    bool operator()(const std::wstring& left, const std::wstring& right) const {
        return CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
    }
};

using Variables = std::map<std::wstring, std::wstring, ByName>;

bool ConcernsTheLauncher(std::wstring_view name) {
    for (const std::wstring_view prefix : {L"ZEP", L"MOR", L"STANDIN_", L"DEBUGCMD_"})
        if (name.starts_with(prefix)) return true;
    return name == L"CurrentMediaDir";
}

Variables OwnVariables() {
    Variables variables;
    wchar_t* const block = GetEnvironmentStringsW();
    for (std::wstring_view entry = block; !entry.empty(); entry = entry.data() + entry.size() + 1) {
        const std::size_t equals = entry.find(L'=', 1);  // a name may begin with one
        const std::wstring name(entry.substr(0, equals));
        if (!ConcernsTheLauncher(name)) variables[name] = entry.substr(equals + 1);
    }
    FreeEnvironmentStringsW(block);
    return variables;
}

}  // namespace

std::wstring EnvironmentBlock(const std::map<std::string, std::string>& changes) {
    Variables variables = OwnVariables();
    for (const auto& [name, value] : changes)
        variables[ToWide(name)] = ToWide(value);
    std::wstring block;
    for (const auto& [name, value] : variables)
        if (!value.empty()) block.append(name).append(L"=").append(value).push_back(L'\0');
    block.push_back(L'\0');
    return block;
}

}  // namespace launcher::test
