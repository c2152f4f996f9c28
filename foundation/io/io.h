// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/io/ioBufferedStreamInput.h"
#include "foundation/io/ioBufferedStreamOutput.h"
#include "foundation/io/ioClientReadContext.h"
#include "foundation/io/ioClientWriteContext.h"
#include "foundation/io/ioFormat.h"
#include "foundation/io/ioNameTable.h"
#include "foundation/io/ioPacketRegistry.h"
#include "foundation/io/ioPacketType.h"
#include "foundation/io/ioReadContext.h"
#include "foundation/io/ioSimplePacketRegistry.h"
#include "foundation/io/ioStatus.h"
#include "foundation/io/ioWriteContext.h"
