// All of this module. Made by scripts/module_headers.
#pragma once

#include "script/ScriptValue.h"
#include "script/initialize.h"
#include "script/luaFunctions.h"
#include "script/luaItems.h"
#include "script/reflectedValues.h"
#include "script/reflection.h"
