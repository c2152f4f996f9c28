// Scanning into items.
#include "plst/impl/FastJsonReader.h"

namespace nxPLST::impl {

ur::Reference<Item> FastJsonReader::read() {
    return FastJsonScan<JsonTreeSink>(text_, sink_).run() ? sink_.takeRoot() : nullptr;
}

}  // namespace nxPLST::impl
