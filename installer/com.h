#pragma once

#include <windows.h>
// windows.h first: the COM headers need it.
#include <objbase.h>

#include "fs/owners.h"
#include "platform/owners.h"

namespace launcher {

// COM on this thread while it lives: a single-threaded apartment without OLE1 DDE. COM's library is
// loaded with it and looked up here, not imported: only a run that shows the folder dialog pays for
// it. What COM gives out must be released before the apartment is.
// https://learn.microsoft.com/windows/win32/api/combaseapi/nf-combaseapi-coinitializeex
class ComApartment {
  public:
    ComApartment();
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    ~ComApartment();

    // A new object of the class, from any kind of server. A system without COM gives E_NOTIMPL.
    // https://learn.microsoft.com/windows/win32/api/combaseapi/nf-combaseapi-cocreateinstance
    HRESULT CreateInstance(REFCLSID classId, REFIID iid, void** object) const;

  private:
    Library library_;
    bool initialised_;
};

// Frees what a COM method allocated for its caller; an apartment must live.
void FreeComMemory(void* memory);

template <class T>
struct ComMemoryTraits {
    using Value = T*;
    static Value None() { return nullptr; }
    static void Release(Value value) { FreeComMemory(value); }
};

template <class Interface>
struct ComTraits {
    using Value = Interface*;
    static Value None() { return nullptr; }
    static void Release(Value value) { value->Release(); }
};

template <class T>
using ComMemory = Owner<ComMemoryTraits<T>>;  // what COM methods allocate for the caller
template <class Interface>
using ComPtr = Owner<ComTraits<Interface>>;  // one counted reference

}  // namespace launcher
