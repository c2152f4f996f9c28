// Finds the table or class that holds a name, and collects the names with its beginning.
#include "foundation/nxLC/completion.h"

#include <algorithm>

#include "foundation/nxLC/impl/objects.h"

namespace nxLC {

using nxRFL::Class;
using nxRFL::Member;
using urString::CString;

namespace {

bool isNameCharacter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool isName(std::string_view text) noexcept {
    return !text.empty() && !(text[0] >= '0' && text[0] <= '9') && std::ranges::all_of(text, isNameCharacter);
}

/// Where the next name is looked up: the table on top of the Lua stack, objects of a class, or unknown. Nothing here
/// allocates in the state, so nothing raises.
class Place {
public:
    explicit Place(lua_State* state) noexcept : state_(state) { lua_pushvalue(state, LUA_GLOBALSINDEX); }
    Place(Place const&) = delete;
    Place& operator=(Place const&) = delete;
    ~Place() { leave(); }

    void enter(std::string_view name) {
        if (class_) {
            Member const* const member = class_->findMember(CString(name));
            bool const isProperty = member && member->kind == Member::Kind::property;
            class_ = isProperty ? typeOf(*member->function) : nullptr;
        } else if (isTable_) {
            enterField(name);
        }
    }
    void collect(std::string_view beginning, char separator, ur::vector<CString>& names) const {
        auto const add = [&](std::string_view name) {
            if (name.starts_with(beginning) && isName(name)) names.emplace_back(name);
        };
        if (class_) {
            addMembers(*class_, separator == ':', add);
        } else if (isTable_) {
            addFields(separator == ':', add);
        }
    }

private:
    void leave() noexcept {
        if (isTable_) lua_pop(state_, 1);
        isTable_ = false;
    }
    /// Calls `visit(key)` for every text key of the table, with the value on top, until `visit` returns false.
    template <class Visit>
    bool visitFields(Visit visit) const {
        for (lua_pushnil(state_); lua_next(state_, -2); lua_pop(state_, 1)) {
            if (lua_type(state_, -2) != LUA_TSTRING) continue;
            std::size_t size = 0;
            char const* const key = lua_tolstring(state_, -2, &size);
            if (!visit(std::string_view(key, size))) return true;
        }
        return false;
    }
    void enterField(std::string_view name) noexcept {
        if (!visitFields([&](std::string_view key) { return key != name; })) return leave();
        lua_replace(state_, -3);
        lua_pop(state_, 1);
        if (lua_istable(state_, -1)) return;
        impl::Box const* const box = impl::toBox(state_, -1);
        class_ = box ? box->objectClass : nullptr;
        leave();
    }
    static Class const* typeOf(nxRFL::Function const& getter) {
        return getter.signature().empty() ? nullptr : getter.getDB()->getClass(getter.signature().front());
    }
    template <class Add>
    void addFields(bool onlyFunctions, Add const& add) const {
        visitFields([&](std::string_view key) {
            if (!onlyFunctions || lua_isfunction(state_, -1)) add(key);
            return true;
        });
    }
    template <class Add>
    static void addMembers(Class const& searched, bool methods, Add const& add) {
        for (Member const& member : searched.members()) {
            bool const isProperty = member.kind == Member::Kind::property;
            if (member.kind != Member::Kind::staticMethod && isProperty != methods) add(member.name);
        }
        for (Class::Base const& link : searched.bases()) addMembers(*link.base, methods, add);
    }

    lua_State* state_;
    bool isTable_ = true;
    Class const* class_ = nullptr;
};

}  // namespace

Completion completions(lua_State* state, std::string_view line) {
    auto const isPart = [](char c) { return isNameCharacter(c) || c == '.' || c == ':'; };
    auto const before = std::find_if_not(line.rbegin(), line.rend(), isPart);
    std::string_view rest = line.substr(static_cast<std::size_t>(line.rend() - before));
    Completion result{line.size(), {}};
    // After anything but a plain name, such as a call, nothing is known.
    if (rest.starts_with('.') || rest.starts_with(':')) return result;
    Place place(state);
    char separator = '.';
    for (std::size_t end = 0; (end = rest.find_first_of(".:")) != std::string_view::npos; rest.remove_prefix(end + 1)) {
        place.enter(rest.substr(0, end));
        separator = rest[end];
    }
    result.begin = line.size() - rest.size();
    place.collect(rest, separator, result.names);
    std::ranges::sort(result.names);
    result.names.erase(std::unique(result.names.begin(), result.names.end()), result.names.end());
    return result;
}

}  // namespace nxLC
