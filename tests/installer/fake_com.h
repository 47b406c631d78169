#pragma once

#include <windows.h>
// windows.h first: the COM headers need it.
#include <objbase.h>

#include <cstddef>
#include <functional>

namespace launcher::test {

// In place of installer/com.cpp. An apartment is in the journal, "COM begins" and "COM ends";
// objects come from `createInstance`; what is freed is really freed, and counted.
struct FakeCom {
    std::function<HRESULT(REFCLSID, REFIID, void**)> createInstance;
    std::size_t freed = 0;
};
extern FakeCom com;

}  // namespace launcher::test
