// The two ways between items and Lua.
#include "script/luaItems.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <typeinfo>

#include "foundation/nxLC/protect.h"
#include "foundation/nxLC/walkValue.h"
#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"
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

/// Builds the items of a Lua value. What is open is held by what encloses it, and all of it by the root.
class ItemSink final : public nxLC::ValueSink {
public:
    [[nodiscard]] Reference<Item> takeRoot() noexcept { return std::move(root_); }

    void onNil() override {}
    void onBoolean(bool value) override { add(ur::make<nxPLST::Bool>(value)); }
    void onNumber(double value) override { add(ur::make<nxPLST::Double>(value)); }
    void onText(char const* bytes, std::size_t size) override {
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
    void add(Reference<Item> item) {
        if (open_.empty()) {
            root_ = std::move(item);
        } else if (Open& top = open_.back(); top.array) {
            top.array->insert(std::move(item));
        } else {
            top.dictionary->insert(top.key, std::move(item));
            top.hasKey = false;
        }
    }

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

Reference<Item const> popPListItem(lua_State* state, int index) {
    try {
        ItemSink sink;
        nxLC::walkValue(state, index, sink);
        return sink.takeRoot();
    } catch (std::exception const&) {
        return nullptr;
    }
}

}  // namespace nxSupport
