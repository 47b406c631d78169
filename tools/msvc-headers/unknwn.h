#pragma once
#include_next <unknwn.h>
template <class Interface>
void** IID_PPV_ARGS_Helper(Interface** pointer) {
    return reinterpret_cast<void**>(pointer);
}
#define IID_PPV_ARGS(pointer) IID(), IID_PPV_ARGS_Helper(pointer)
