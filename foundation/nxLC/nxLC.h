// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/nxLC/Limits.h"
#include "foundation/nxLC/ReflectionData.h"
#include "foundation/nxLC/StackChecker.h"
#include "foundation/nxLC/State.h"
#include "foundation/nxLC/completion.h"
#include "foundation/nxLC/protect.h"
#include "foundation/nxLC/stackValues.h"
#include "foundation/nxLC/walkValue.h"
