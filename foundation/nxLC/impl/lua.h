// Lua 5.1, the plain C library or its C++ build: the headers are the same.
#pragma once

#include <lua.hpp>
