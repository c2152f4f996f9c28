// All of this module. Made by scripts/module_headers.
#pragma once

#include "dyd/Arg.h"
#include "dyd/Function.h"
#include "dyd/Hooks.h"
#include "dyd/Invocation.h"
#include "dyd/pointerText.h"
