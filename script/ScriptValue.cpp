// Converts values on reflection stacks to items and back.
#include "script/ScriptValue.h"

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Reader.h"
#include "foundation/nxRFL/Writer.h"
#include "foundation/ur/containers.h"
#include "plst/visit.h"

namespace nxSupport {
namespace {

using nxRFL::Kind;
using ur::Reference;

/// The depth limit. Strict JSON cannot hold deeper trees either.
constexpr int deepest = 128;

constexpr std::size_t bytesOfItem = 64;

/// Builds the items of one value, and charges them.
class TreeReader {
public:
    TreeReader(nxRFL::Reader& reader, ur::Charge& charge) noexcept : reader_(reader), charge_(charge) {}

    Reference<nxPLST::Item> read(int depth) {
        if (depth == deepest) throw nxRFL::Exception("the value is nested too deeply");
        charge_.add(bytesOfItem);
        switch (reader_.kind()) {
            case Kind::boolean: return ur::make<nxPLST::Bool>(reader_.readBool());
            case Kind::number: return ur::make<nxPLST::Double>(reader_.readDouble());
            case Kind::text: return ur::make<nxPLST::String>(readText());
            case Kind::array: return readArray(depth + 1);
            case Kind::dictionary: return readDictionary(depth + 1);
            default: reader_.fail("boolean, number, string or table");
        }
    }

private:
    urString::CString readText() {
        urString::CString const& text = reader_.readText();
        charge_.add(text.size());
        return text;
    }
    Reference<nxPLST::Item> readArray(int depth) {
        auto array = ur::make<nxPLST::Array>();
        for (unsigned left = reader_.startArray(); left > 0; --left) array->insert(read(depth));
        reader_.endArray();
        return array;
    }
    Reference<nxPLST::Item> readDictionary(int depth) {
        auto dictionary = ur::make<nxPLST::Dictionary>();
        for (unsigned left = reader_.startDictionary(); left > 0; --left) {
            urString::CString const key = readText();
            dictionary->insert(key, read(depth));
        }
        reader_.endDictionary();
        return dictionary;
    }

    nxRFL::Reader& reader_;
    ur::Charge& charge_;
};

void writeTree(nxRFL::Writer& writer, Reference<nxPLST::Item const> const& item, int depth) {
    if (!item) return writer.writeNull();
    if (depth == deepest) throw nxRFL::Exception("the value is nested too deeply");
    nxPLST::visit(
        *item, [&](nxPLST::Bool const& truth) { writer.writeBool(truth.value()); },
        [&](nxPLST::Double const& number) { writer.writeDouble(number.value()); },
        [&](nxPLST::String const& text) { writer.writeText(text.value()); },
        [&](nxPLST::Array const& array) {
            writer.startArray(static_cast<unsigned>(array.size()));
            for (auto const& element : array.array()) writeTree(writer, element, depth + 1);
            writer.endArray();
        },
        [&](nxPLST::Dictionary const& dictionary) {
            writer.startDictionary(static_cast<unsigned>(dictionary.size()));
            for (auto const& [key, value] : dictionary.dictionary()) {
                writer.writeText(key);
                writeTree(writer, value, depth + 1);
            }
            writer.endDictionary();
        });
}

}  // namespace

std::size_t bytesOf(nxPLST::Item const& item) {
    std::size_t bytes = 0;
    ur::vector<nxPLST::Item const*> left = {&item};
    auto const addChild = [&left](Reference<nxPLST::Item> const& child) {
        if (child) left.push_back(child.get());
    };
    while (!left.empty()) {
        nxPLST::Item const& next = *left.back();
        left.pop_back();
        bytes += bytesOfItem;
        nxPLST::visit(
            next, [&](nxPLST::String const& text) { bytes += text.value().size(); },
            [&](nxPLST::Array const& array) {
                for (auto const& element : array.array()) addChild(element);
            },
            [&](nxPLST::Dictionary const& dictionary) {
                for (auto const& [key, value] : dictionary.dictionary()) {
                    bytes += key.size();
                    addChild(value);
                }
            },
            [](nxPLST::Item const&) {});
    }
    return bytes;
}

void read(nxRFL::Reader& reader, ScriptValue& value) {
    value = {};
    if (reader.isNull()) return reader.readNull();
    value.charge = ur::Charge(reader.account(), 0);
    value.item = TreeReader(reader, value.charge).read(0);
}

void write(nxRFL::Writer& writer, ScriptValue const& value) { writeTree(writer, value.item, 0); }

}  // namespace nxSupport
