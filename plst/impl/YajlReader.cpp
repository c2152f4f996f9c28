// Yajl's scan into items.
#include "plst/impl/YajlReader.h"

#include "plst/impl/JsonTreeSink.h"
#include "plst/impl/YajlScan.h"

namespace nxPLST::impl {

bool readWithYajl(ur::Reference<Item>& out, char const* text, std::size_t length) {
    JsonTreeSink sink;
    if (!YajlScan<JsonTreeSink>(sink).run({text, length})) return false;
    out = sink.takeRoot();
    return true;
}

}  // namespace nxPLST::impl
