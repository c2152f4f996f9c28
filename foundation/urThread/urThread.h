// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/urThread/Buffer.h"
#include "foundation/urThread/ReferenceCount.h"
#include "foundation/urThread/RunQueue.h"
#include "foundation/urThread/Runnable.h"
#include "foundation/urThread/Thread.h"
