// Selects between the two JSON readers.
#include "plst/impl/json/readJson.h"

#include <utility>

#include "plst/impl/json/YajlScan.h"

namespace nxPLST::impl {

JsonReading readJson(ur::Reference<Item>& out, std::string_view text) {
    FastJsonReader reader(text);
    if (ur::Reference<Item> tree = reader.read()) {
        out = std::move(tree);
        return reader.lostNothing() ? JsonReading::whole : JsonReading::perhapsLossy;
    }
    return readWithYajl(out, text.data(), text.size()) ? JsonReading::perhapsLossy : JsonReading::refused;
}

ur::Reference<Item> FastJsonReader::read() {
    return FastJsonScan<JsonTreeSink>(text_, sink_).run() ? sink_.takeRoot() : nullptr;
}

bool readWithYajl(ur::Reference<Item>& out, char const* text, std::size_t length) {
    JsonTreeSink sink;
    if (!YajlScan<JsonTreeSink>(sink).run({text, length})) return false;
    out = sink.takeRoot();
    return true;
}

}  // namespace nxPLST::impl
