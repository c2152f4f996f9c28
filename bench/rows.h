// The groups of rows, one source file each.
#pragma once

#include "bench/Suite.h"

namespace bench {

void addJsonRows(Suite& suite);
void addTreeRows(Suite& suite);
void addDictionaryRows(Suite& suite);
void addPacketRows(Suite& suite);
void addSignalRows(Suite& suite);

}  // namespace bench
