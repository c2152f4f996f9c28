// The groups of rows, one source file each.
#pragma once

#include "bench/Suite.h"

namespace bench {

/// Must come first: what other rows leave free would hide what trees take.
void addMemoryRows(Suite& suite);
void addJsonRows(Suite& suite);
void addTreeRows(Suite& suite);
void addDictionaryRows(Suite& suite);
void addPacketRows(Suite& suite);
void addSignalRows(Suite& suite);
void addMessagingRows(Suite& suite);
void addCacheRows(Suite& suite);
void addUndoRows(Suite& suite);
void addPropertyRows(Suite& suite);
void addLuaRows(Suite& suite);
void addServiceRows(Suite& suite);

}  // namespace bench
