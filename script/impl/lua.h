// Includes Lua 5.1.
#pragma once

#include <lua.hpp>
