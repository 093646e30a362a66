#pragma once

// The protocol's header for C names a field with a word of C++. As a header of the system it is not
// warned of.
#pragma GCC system_header
#define explicit explicitParts
#include <xcb/xkb.h>
#undef explicit
