#include "tests/support/isolated_test.h"

#include <windows.h>

#include <string_view>

namespace launcher::test {
namespace {

std::map<std::wstring, std::wstring> ReadEnvironment() {
    std::map<std::wstring, std::wstring> variables;
    wchar_t* const block = GetEnvironmentStringsW();
    for (const wchar_t* next = block; *next != L'\0';) {
        const std::wstring_view entry = next;
        const std::size_t equals = entry.find(L'=', 1);  // a name may begin with '='
        variables.emplace(entry.substr(0, equals), entry.substr(equals + 1));
        next += entry.size() + 1;
    }
    FreeEnvironmentStringsW(block);
    return variables;
}

}  // namespace

IsolatedTest::IsolatedTest() : environment_(ReadEnvironment()) {
    journal.clear();
}

IsolatedTest::~IsolatedTest() {
    for (const auto& [name, value] : ReadEnvironment())
        if (!environment_.contains(name)) SetEnvironmentVariableW(name.c_str(), nullptr);
    for (const auto& [name, value] : environment_)
        SetEnvironmentVariableW(name.c_str(), value.c_str());
}

}  // namespace launcher::test
