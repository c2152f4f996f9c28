// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/urRTB/Connection.h"
#include "foundation/urRTB/Function.h"
#include "foundation/urRTB/FunctionBase.h"
#include "foundation/urRTB/Signal.h"
#include "foundation/urRTB/SignalBase.h"
#include "foundation/urRTB/SignalClient.h"
