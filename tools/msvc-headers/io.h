#pragma once
#include_next <io.h>
int _wsopen_s(int* file, const wchar_t* path, int flags, int sharing, int mode);
