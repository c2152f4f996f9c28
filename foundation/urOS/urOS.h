// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/urOS/AppOutput.h"
#include "foundation/urOS/AtomicFile.h"
#include "foundation/urOS/DebugChannel.h"
#include "foundation/urOS/File.h"
#include "foundation/urOS/Filename.h"
#include "foundation/urOS/FirstError.h"
#include "foundation/urOS/IOStream.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "foundation/urOS/OStream.h"
#include "foundation/urOS/OpenMode.h"
#include "foundation/urOS/StopWatch.h"
#include "foundation/urOS/Uuid.h"
#include "foundation/urOS/reportException.h"
#include "foundation/urOS/sysInfo.h"
