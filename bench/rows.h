// The groups of rows; each has its own source file.
#pragma once

#include "bench/Suite.h"

namespace bench {

/// Must come first: otherwise trees would reuse memory that other rows have freed, and their size would be hidden.
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
void addDocumentRows(Suite& suite);

}  // namespace bench
