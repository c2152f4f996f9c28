// Compares packet streams with other binary forms of the same tree.
#include <cereal/archives/binary.hpp>
#include <cereal/types/map.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/variant.hpp>
#include <cereal/types/vector.hpp>

#include <map>
#include <memory>
#include <msgpack.hpp>
#include <sstream>
#include <variant>

#include "bench/inputs.h"
#include "bench/rows.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "plst/casts.h"
#include "plst/packets.h"

namespace bench {
namespace {

using Tree = ur::Reference<nxPLST::Item>;

/// The tree as a user of cereal would define it.
struct Node {
    std::variant<bool, double, std::string, std::vector<Node>, std::map<std::string, Node>> value;

    template <class Archive>
    void serialize(Archive& archive) {
        archive(value);
    }
};

Node nodeOf(Tree const& item) {
    Node node;
    if (auto const truth = nxPLST::asBool(item)) node.value = truth->value();
    if (auto const number = nxPLST::asDouble(item)) node.value = number->value();
    if (auto const text = nxPLST::asString(item)) node.value = std::string(text->value().view());
    if (auto const array = nxPLST::asArray(item)) {
        auto& elements = node.value.emplace<std::vector<Node>>();
        for (auto const& element : array->array()) elements.push_back(nodeOf(element));
    }
    if (auto const dictionary = nxPLST::asDictionary(item)) {
        auto& entries = node.value.emplace<std::map<std::string, Node>>();
        for (auto const& [key, value] : dictionary->dictionary()) entries[std::string(key.view())] = nodeOf(value);
    }
    return node;
}

/// Packs items as MessagePack. Unpacking this gives the object tree that the write row copies.
void pack(msgpack::packer<msgpack::sbuffer>& out, Tree const& item) {
    if (auto const truth = nxPLST::asBool(item)) out.pack(truth->value());
    if (auto const number = nxPLST::asDouble(item)) out.pack(number->value());
    if (auto const text = nxPLST::asString(item)) out.pack(text->value().view());
    if (auto const array = nxPLST::asArray(item)) {
        out.pack_array(static_cast<std::uint32_t>(array->size()));
        for (auto const& element : array->array()) pack(out, element);
    }
    if (auto const dictionary = nxPLST::asDictionary(item)) {
        out.pack_map(static_cast<std::uint32_t>(dictionary->size()));
        for (auto const& [key, value] : dictionary->dictionary()) {
            out.pack(key.view());
            pack(out, value);
        }
    }
}

std::shared_ptr<msgpack::sbuffer> packed(Tree const& tree) {
    auto const buffer = std::make_shared<msgpack::sbuffer>();
    msgpack::packer<msgpack::sbuffer> packer(*buffer);
    pack(packer, tree);
    return buffer;
}

std::string archived(Node const& node) {
    std::ostringstream out;
    cereal::BinaryOutputArchive archive(out);
    archive(node);
    return out.str();
}

Sides writers(int records) {
    Tree const tree = recordTree(records);
    auto const objects =
        std::make_shared<msgpack::object_handle>(msgpack::unpack(packed(tree)->data(), packed(tree)->size()));
    auto const node = std::make_shared<Node>(nodeOf(tree));
    return {{"nxPLST",
             [=] {
                 urOS::MemoryIOStream out;
                 keep(out.open(urOS::openForWriting).ok());
                 return seconds([&] { keep(nxPLST::write(out, tree)); });
             }},
            {"msgpack-cxx",
             [=] {
                 msgpack::sbuffer out;
                 return seconds([&] { msgpack::pack(out, objects->get()); });
             }},
            {"cereal", [=] { return seconds([&] { keep(archived(*node)); }); }}};
}

Sides readers(int records) {
    Tree const tree = recordTree(records);
    auto const stream = std::make_shared<urOS::MemoryIOStream>();
    keep(stream->open(urOS::openForWriting).ok() && nxPLST::write(*stream, tree));
    auto const buffer = packed(tree);
    std::string const archive = archived(nodeOf(tree));
    return {{"nxPLST",
             [=] {
                 Tree read;
                 return seconds([&] { keep(stream->open(urOS::openRead).ok() && nxPLST::read(*stream, read)); });
             }},
            {"msgpack-cxx",
             [=] {
                 msgpack::object_handle read;
                 return seconds([&] { read = msgpack::unpack(buffer->data(), buffer->size()); });
             }},
            {"cereal", [=] {
                 Node read;
                 return seconds([&] {
                     std::istringstream in(archive);
                     cereal::BinaryInputArchive reader(in);
                     reader(read);
                 });
             }}};
}

}  // namespace

void addPacketRows(Suite& suite) {
    int const records = suite.scaled(50000);
    suite.compare("packet-write/records", 0.6, [=] { return writers(records); });
    suite.compare("packet-read/records", 0.5, [=] { return readers(records); });
}

}  // namespace bench
