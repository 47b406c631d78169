#pragma once
#include_next <ctype.h>
int _islower_l(int character, _locale_t locale);
int _isupper_l(int character, _locale_t locale);
