// Trees, their texts and packets, and signals while memory runs out.
#include "foundation/urOS/MemoryIOStream.h"
#include "foundation/urRTB/Signal.h"
#include "plst/JsonReport.h"
#include "plst/casts.h"
#include "plst/packets.h"
#include "tests/faults/survives.h"

#include <array>

namespace faults {
namespace {

using nxPLST::Item;
using ur::Reference;
using urString::CString;

constexpr char const* json = R"({"name": "a text that is too long to be held in place",
    "list": [1, 2.5, true, ["nested", {}], "x\u00e9"], "more": {"a": 1, "b": [], "c": {"d": "e"}}, "a": null, "a": 3})";

Reference<Item> tree() {
    Reference<Item> item;
    EXPECT_TRUE(nxPLST::convertFromJSON(item, json));
    return item;
}

/// An operation on a tree. The state is the tree so far.
struct TreeStory {
    std::string state() const { return std::string(nxPLST::asJSON(item)); }
    Reference<Item> item = ur::make<nxPLST::Double>(7);
};

struct ReadJson : TreeStory {
    bool act() { return nxPLST::convertFromJSON(item, text); }
    CString text = json;
};

struct ReadJsonWithReport : TreeStory {
    bool act() {
        nxPLST::JsonReport report;
        return nxPLST::convertFromJSON(item, text, report);
    }
    CString text = json;
};

struct ReadJsonWithComments : ReadJson {
    ReadJsonWithComments() { text.append(" // a remark"); }
};

struct CloneTree : TreeStory {
    bool act() {
        item = given->clone();
        return true;
    }
    Reference<Item> given = tree();
};

struct InsertIntoDictionary : TreeStory {
    InsertIntoDictionary() { item = tree(); }
    bool act() {
        nxPLST::asDictionary(item)->insert("a key that is too long to be held in place", given);
        return true;
    }
    Reference<Item> given = tree();
};

/// Inserts a key into a map of the even keys below 2 * `former`: the map grows from one block to two, or its branches
/// split up to the root.
template <int former, int added = 2 * former, bool inOrder = false>
struct GrowMap {
    GrowMap() {
        for (int i = 0; i < former; ++i) map[2 * i];
    }
    bool act() {
        inOrder ? void(map.ascending(added)) : void(map.try_emplace(added));
        return true;
    }
    std::string state() const {
        std::string keys;
        for (auto at = map.begin(); at != map.end(); ++at) {
            if (map.find(at->first) == at) keys += std::to_string(at->first) + " ";
        }
        return keys;
    }
    ur::BlockMap<int, std::array<char, 200>, ur::less<int>, 2, 3> map;  // entries larger than a small node
};

struct WriteJson {
    bool act() {
        CString text;
        if (!nxPLST::convertToJSON(text, given)) return false;
        written = std::move(text);
        return true;
    }
    std::string state() const { return std::string(written); }
    Reference<Item> given = tree();
    CString written;
};

struct DumpJson : WriteJson {
    bool act() {
        written = nxPLST::asJSON(given);
        return true;
    }
};

struct WritePackets : WriteJson {
    bool act() {
        urOS::MemoryIOStream stream;
        if (!stream.open(urOS::openForWriting).ok() || !nxPLST::write(stream, given)) return false;
        written = stream.contents();
        return true;
    }
};

struct ReadPackets : TreeStory {
    ReadPackets() {
        EXPECT_TRUE(stream.open(urOS::openForWriting).ok());
        EXPECT_TRUE(nxPLST::write(stream, tree()));
    }
    bool act() {
        Reference<Item> read;  // not `item`: reading stores complete items even if the stream fails
        if (!stream.open(urOS::openRead).ok() || !nxPLST::read(stream, read)) return false;
        item = std::move(read);
        return true;
    }
    urOS::MemoryIOStream stream;
};

struct Connect {
    bool act() {
        connection = signal.addCallback(client, [this, padding = std::string(100, 'x')](int by) { total += by; });
        return true;
    }
    std::string state() {
        signal.emit(1);
        return std::to_string(std::exchange(total, 0)) + " of " + std::to_string(signal.connectionCount());
    }
    urRTB::Signal<int> signal;
    urRTB::SignalClient client;
    urRTB::Connection connection;
    int total = 0;
};

TEST(WithoutMemory, TreesAreReadWholeOrNotAtAll) {
    survives<ReadJson>();
    survives<ReadJsonWithReport>();
    survives<ReadJsonWithComments>();
    survives<ReadPackets>();
}

TEST(WithoutMemory, TreesStayWhatTheyAreWhenWrittenOrCopied) {
    survives<WriteJson>();
    survives<DumpJson>();
    survives<WritePackets>();
    survives<CloneTree>();
    survives<InsertIntoDictionary>();
    survives<GrowMap<2>>();   // a second block and a tree
    survives<GrowMap<14>>();  // branches on several levels, and a root
    survives<GrowMap<14, -1>>();
    survives<GrowMap<14, 13>>();
    survives<GrowMap<2, 4, true>>();
    survives<GrowMap<14, 13, true>>();
    survives<GrowMap<14, 28, true>>();
}

TEST(WithoutMemory, CallbacksAreConnectedOrNot) { survives<Connect>(); }

}  // namespace
}  // namespace faults
