#pragma once
#include_next <stdlib.h>
#define MB_CUR_MAX 5
float _strtof_l(const char* text, char** end, _locale_t locale);
double _strtod_l(const char* text, char** end, _locale_t locale);
int _dupenv_s(char** value, size_t* size, const char* name);
