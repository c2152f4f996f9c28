// The fast reader, and yajl behind it.
#include "plst/impl/readJson.h"

#include "plst/impl/FastJsonReader.h"
#include "plst/impl/YajlReader.h"

namespace nxPLST::impl {

JsonReading readJson(ur::Reference<Item>& out, std::string_view text) {
    FastJsonReader reader(text);
    if (ur::Reference<Item> tree = reader.read()) {
        out = std::move(tree);
        return reader.lostNothing() ? JsonReading::whole : JsonReading::perhapsLossy;
    }
    return readWithYajl(out, text.data(), text.size()) ? JsonReading::perhapsLossy : JsonReading::refused;
}

}  // namespace nxPLST::impl
