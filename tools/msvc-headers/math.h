#pragma once
#include_next <math.h>
#undef fpclassify
#undef isfinite
#undef isinf
#undef isnan
#undef isnormal
#undef signbit
template <class T>
int fpclassify(T x) noexcept;
template <class T>
bool isfinite(T x) noexcept;
template <class T>
bool isinf(T x) noexcept;
template <class T>
bool isnan(T x) noexcept;
template <class T>
bool isnormal(T x) noexcept;
