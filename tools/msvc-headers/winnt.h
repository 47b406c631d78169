#pragma once
// Clang has these built in, and Wine's header defines them; some for 32 bits only.
#define _InterlockedAnd64 WineInterlockedAnd64
#define _InterlockedCompareExchange128 WineInterlockedCompareExchange128
#define _InterlockedCompareExchangePointer WineInterlockedCompareExchangePointer
#define _InterlockedDecrement64 WineInterlockedDecrement64
#define _InterlockedExchangeAdd64 WineInterlockedExchangeAdd64
#define _InterlockedExchangePointer WineInterlockedExchangePointer
#define _InterlockedIncrement64 WineInterlockedIncrement64
#define _InterlockedOr64 WineInterlockedOr64
#define _InterlockedXor64 WineInterlockedXor64
#include_next <winnt.h>
#undef _InterlockedAnd64
#undef _InterlockedCompareExchange128
#undef _InterlockedCompareExchangePointer
#undef _InterlockedDecrement64
#undef _InterlockedExchangeAdd64
#undef _InterlockedExchangePointer
#undef _InterlockedIncrement64
#undef _InterlockedOr64
#undef _InterlockedXor64

#define IFACEMETHODIMP STDMETHODIMP
#define IFACEMETHODIMP_(type) STDMETHODIMP_(type)
