// Converts values on reflection stacks to items and back.
#include "tools/nxhost/ScriptValue.h"

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Reader.h"
#include "foundation/nxRFL/Writer.h"
#include "plst/casts.h"

namespace nxhost {
namespace {

using nxRFL::Kind;
using ur::Reference;

/// The depth limit. Strict JSON cannot hold deeper trees either.
constexpr int deepest = 128;

Reference<nxPLST::Item> readTree(nxRFL::Reader& reader, int depth);

Reference<nxPLST::Item> readArray(nxRFL::Reader& reader, int depth) {
    auto array = ur::make<nxPLST::Array>();
    for (unsigned left = reader.startArray(); left > 0; --left) array->insert(readTree(reader, depth));
    reader.endArray();
    return array;
}

Reference<nxPLST::Item> readDictionary(nxRFL::Reader& reader, int depth) {
    auto dictionary = ur::make<nxPLST::Dictionary>();
    for (unsigned left = reader.startDictionary(); left > 0; --left) {
        urString::CString const key = reader.readText();
        dictionary->insert(key, readTree(reader, depth));
    }
    reader.endDictionary();
    return dictionary;
}

Reference<nxPLST::Item> readTree(nxRFL::Reader& reader, int depth) {
    if (depth == deepest) throw nxRFL::Exception("the value is nested too deeply");
    switch (reader.kind()) {
        case Kind::boolean: return ur::make<nxPLST::Bool>(reader.readBool());
        case Kind::number: return ur::make<nxPLST::Double>(reader.readDouble());
        case Kind::text: return ur::make<nxPLST::String>(reader.readText());
        case Kind::array: return readArray(reader, depth + 1);
        case Kind::dictionary: return readDictionary(reader, depth + 1);
        default: reader.fail("boolean, number, string or table");
    }
}

void writeTree(nxRFL::Writer& writer, Reference<nxPLST::Item const> const& item) {
    if (!item) return writer.writeNull();
    switch (item->type()) {
        case nxPLST::BoolType: return writer.writeBool(asBool(item)->value());
        case nxPLST::DoubleType: return writer.writeDouble(asDouble(item)->value());
        case nxPLST::StringType: return writer.writeText(asString(item)->value());
        case nxPLST::ArrayType:
            writer.startArray(static_cast<unsigned>(asArray(item)->size()));
            for (auto const& element : asArray(item)->array()) writeTree(writer, element);
            return writer.endArray();
        case nxPLST::DictionaryType:
            writer.startDictionary(static_cast<unsigned>(asDictionary(item)->size()));
            for (auto const& [key, value] : asDictionary(item)->dictionary()) {
                writer.writeText(key);
                writeTree(writer, value);
            }
            return writer.endDictionary();
    }
}

}  // namespace

std::size_t bytesOf(nxPLST::Item const& item) {
    constexpr std::size_t bytesOfItem = 64;
    std::size_t bytes = bytesOfItem;
    Reference<nxPLST::Item const> const held(&item);
    if (auto const text = asString(held)) bytes += text->value().size();
    if (auto const array = asArray(held)) {
        for (auto const& element : array->array()) bytes += bytesOf(*element);
    }
    if (auto const dictionary = asDictionary(held)) {
        for (auto const& [key, value] : dictionary->dictionary()) bytes += bytesOf(*value) + key.size();
    }
    return bytes;
}

void read(nxRFL::Reader& reader, ScriptValue& value) {
    value.item = nullptr;
    if (reader.isNull()) return reader.readNull();
    value.item = readTree(reader, 0);
}

void write(nxRFL::Writer& writer, ScriptValue const& value) { writeTree(writer, value.item); }

}  // namespace nxhost
