#pragma once
#define _HAS_EXCEPTIONS 1
#include <crtdefs.h>
