// The two ways between items and Lua.
#include "script/luaItems.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <typeinfo>
#include <utility>

#include "foundation/nxLC/ReflectionData.h"
#include "foundation/nxLC/protect.h"
#include "foundation/nxLC/walkValue.h"
#include "foundation/nxRFL/Database.h"
#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "script/impl/itemFromLua.h"
#include "script/impl/makeRoom.h"

namespace nxSupport {

using nxPLST::Array;
using nxPLST::Dictionary;
using nxPLST::Item;
using ur::Reference;
using urString::CString;

namespace {

/// The item as a T; null when it is none. Compares classes, which are final, as the checked casts do.
template <class T>
T const* as(Item const& item) noexcept {
    return typeid(item) == typeid(T) ? static_cast<T const*>(&item) : nullptr;
}

bool hasKind(Item const& item) noexcept {
    return as<nxPLST::Bool>(item) || as<nxPLST::Double>(item) || as<nxPLST::String>(item) || as<Array>(item) ||
           as<Dictionary>(item);
}

// These run in the body of a `protect`: they raise and throw.

void pushAny(lua_State* state, Item const* item);

void pushArray(lua_State* state, Array const& array) {
    impl::makeRoom(state);
    lua_createtable(state, array.size(), 0);
    int position = 0;
    for (auto const& element : array.array()) {
        pushAny(state, element.get());
        lua_rawseti(state, -2, ++position);
    }
}

void pushDictionary(lua_State* state, Dictionary const& dictionary) {
    impl::makeRoom(state);
    lua_createtable(state, 0, dictionary.size());
    for (auto const& [key, value] : dictionary.dictionary()) {
        lua_pushstring(state, key.c_str());
        pushAny(state, value.get());
        lua_rawset(state, -3);
    }
}

void pushAny(lua_State* state, Item const* item) {
    if (!item) return lua_pushnil(state);
    if (auto const* const number = as<nxPLST::Double>(*item)) return lua_pushnumber(state, number->value());
    if (auto const* const text = as<nxPLST::String>(*item)) return lua_pushstring(state, text->value().c_str());
    if (auto const* const array = as<Array>(*item)) return pushArray(state, *array);
    if (auto const* const dictionary = as<Dictionary>(*item)) return pushDictionary(state, *dictionary);
    if (auto const* const truth = as<nxPLST::Bool>(*item)) return lua_pushboolean(state, truth->value());
    lua_pushnil(state);
}

constexpr std::size_t nodeBytes = 32;    ///< about, of an item with its allocation
constexpr std::size_t memberBytes = 24;  ///< about, of a reference in its container, with a key
constexpr std::size_t chargedAtOnce = 4096;

/// Builds the items of a Lua value, and charges them. An open container is held by the one that encloses it, and all
/// of them by the root.
class ItemSink final : public nxLC::ValueSink {
public:
    explicit ItemSink(ur::Charge& charge) noexcept : charge_(charge) {}
    [[nodiscard]] Reference<Item> takeRoot() {
        charge_.add(std::exchange(uncharged_, 0));
        return std::move(root_);
    }

    void onNil() override {}
    void onBoolean(bool value) override { add(ur::make<nxPLST::Bool>(value)); }
    void onNumber(double value) override { add(ur::make<nxPLST::Double>(value)); }
    void onText(char const* bytes, std::size_t size) override {
        charge(size);
        CString text(bytes, static_cast<std::size_t>(std::find(bytes, bytes + size, '\0') - bytes));
        if (isKeyNext()) {
            open_.back().key = std::move(text);
            open_.back().hasKey = true;
        } else {
            add(ur::make<nxPLST::String>(std::move(text)));
        }
    }
    void startArray() override {
        auto array = ur::make<Array>();
        Array* const opened = array.get();
        add(std::move(array));
        open_.push_back({opened, nullptr, {}, false});
    }
    void endArray() override { open_.pop_back(); }
    void startDictionary() override {
        auto dictionary = ur::make<Dictionary>();
        Dictionary* const opened = dictionary.get();
        add(std::move(dictionary));
        open_.push_back({nullptr, opened, {}, false});
    }
    void endDictionary() override { open_.pop_back(); }
    /// Nothing but plain values and tables has an item.
    bool onOther(lua_State* /*state*/, int /*index*/) override { return false; }

private:
    struct Open {
        Array* array;
        Dictionary* dictionary;
        CString key;
        bool hasKey;
    };

    [[nodiscard]] bool isKeyNext() const noexcept {
        return !open_.empty() && open_.back().dictionary && !open_.back().hasKey;
    }
    void charge(std::size_t bytes) {
        uncharged_ += bytes;
        if (uncharged_ >= chargedAtOnce) charge_.add(std::exchange(uncharged_, 0));
    }
    void add(Reference<Item> item) {
        charge(nodeBytes + memberBytes);
        if (open_.empty()) {
            root_ = std::move(item);
        } else if (Open& top = open_.back(); top.array) {
            top.array->insert(std::move(item));
        } else {
            top.dictionary->insert(top.key, std::move(item));
            top.hasKey = false;
        }
    }

    ur::Charge& charge_;
    std::size_t uncharged_ = 0;
    Reference<Item> root_;
    ur::vector<Open> open_;
};

}  // namespace

void pushPListItem(lua_State* state, Reference<Item const> item) {
    if (!item || !hasKind(*item)) return;
    try {
        nxLC::protect(state, 0, 1, [pushed = item.get()](lua_State* inner) {
            pushAny(inner, pushed);
            return 1;
        });
    } catch (std::exception const&) {
        // Nothing has been pushed.
    }
}

std::shared_ptr<ur::Account> impl::accountOf(lua_State* state) {
    auto const* const data = nxLC::ReflectionData::find(state);
    return data ? data->getDB()->account() : nullptr;
}

Reference<Item const> impl::itemFromLua(lua_State* state, int index, ur::Charge& charge) {
    ItemSink sink(charge);
    nxLC::walkValue(state, index, sink);
    return sink.takeRoot();
}

Reference<Item const> popPListItem(lua_State* state, int index) {
    try {
        ur::Charge charge(impl::accountOf(state), 0);
        return impl::itemFromLua(state, index, charge);
    } catch (std::exception const&) {
        return nullptr;
    }
}

}  // namespace nxSupport
