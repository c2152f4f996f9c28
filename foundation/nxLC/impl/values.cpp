// Reads arguments and pushes results: plain values on a fast path, others inside `protect`.
#include "foundation/nxLC/impl/values.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "foundation/nxLC/impl/ScriptFunction.h"
#include "foundation/nxLC/impl/objects.h"
#include "foundation/nxLC/walkValue.h"
#include "foundation/nxRFL/Reader.h"

namespace nxLC::impl {

using nxRFL::Class;
using nxRFL::Exception;
using nxRFL::Function;
using nxRFL::Kind;
using nxRFL::Object;
using nxRFL::Reader;
using nxRFL::Stack;
using nxRFL::Writer;
using urString::CString;

namespace {

/// Writes the object or the class that the value stands for. False when it is neither.
bool writeObject(Binding& binding, lua_State* state, int index, Writer& writer, Object::Hold hold) {
    if (Box const* const box = toBox(binding, state, index)) {
        if (!box->pointer)
            throw Exception(CString::format("must not be a %s that has gone", box->objectClass->name().c_str()));
        writer.writeObject(box->pointer, *box->objectClass, hold, Object::Known::exact);
        return true;
    }
    Class* const named = toClass(state, index);
    if (named) writer.writeObject(named, *binding.classOfClasses, hold, Object::Known::exact);
    return named != nullptr;
}

class StackSink final : public ValueSink {
public:
    StackSink(Binding& binding, Writer& writer) noexcept : binding_(binding), writer_(writer) {}

    void onNil() override { writer_.writeNull(); }
    void onBoolean(bool value) override { writer_.writeBool(value); }
    void onNumber(double value) override { writer_.writeDouble(value); }
    void onText(char const* bytes, std::size_t size) override { writer_.writeText(CString(bytes, size)); }
    void startArray() override { writer_.startArray(0); }
    void endArray() override { writer_.endArray(); }
    void startDictionary() override { writer_.startDictionary(0); }
    void endDictionary() override { writer_.endDictionary(); }
    bool onOther(lua_State* state, int index) override {
        if (lua_type(state, index) != LUA_TFUNCTION)
            return writeObject(binding_, state, index, writer_, Object::Hold::shared);
        int const place = keepFunction(binding_, state, index);
        writer_.writeFunction(functionAt(binding_, place));
        return true;
    }

private:
    Binding& binding_;
    Writer& writer_;
};

void readValue(Binding& binding, lua_State* state, int index, Writer& writer, Object::Hold hold) {
    switch (lua_type(state, index)) {
        case LUA_TNIL: return writer.writeNull();
        case LUA_TBOOLEAN: return writer.writeBool(lua_toboolean(state, index) != 0);
        case LUA_TNUMBER: return writer.writeDouble(lua_tonumber(state, index));
        case LUA_TSTRING: {
            std::size_t size = 0;
            char const* const text = lua_tolstring(state, index, &size);
            binding.meter.spendBytes(size);
            return writer.writeText(CString(text, size));
        }
        case LUA_TUSERDATA:
            if (writeObject(binding, state, index, writer, hold)) return;
            [[fallthrough]];
        default: {
            StackSink sink(binding, writer);
            walkValue(state, index, sink);
        }
    }
}

/// The start of a message about the argument at `position`, counted from 0.
CString argumentName(Function const& function, int position) {
    bool const isMethod = function.isMethod();
    if (isMethod && position == 0) return function.name() + ": the object ";
    return function.name() + CString::format(": argument %d ", position + (isMethod ? 0 : 1));
}

/// Pushes a plain value or a known object. False for others. Never raises.
bool pushPlain(Binding& binding, lua_State* state, Reader& reader) {
    switch (reader.kind()) {
        case Kind::null:
            reader.readNull();
            lua_pushnil(state);
            return true;
        case Kind::boolean: lua_pushboolean(state, reader.readBool()); return true;
        case Kind::number: lua_pushnumber(state, reader.readDouble()); return true;
        case Kind::object: return pushKnown(binding, state, reader.readAnyObject());
        default: return false;
    }
}

void pushNext(Binding& binding, lua_State* state, Reader& reader);

void pushArray(Binding& binding, lua_State* state, Reader& reader) {
    unsigned const count = reader.startArray();
    lua_createtable(state, static_cast<int>(std::min(count, 1U << 24U)), 0);
    for (unsigned i = 1; i <= count; ++i) {
        pushNext(binding, state, reader);
        lua_rawseti(state, -2, static_cast<int>(i));
    }
    reader.endArray();
}

void pushDictionary(Binding& binding, lua_State* state, Reader& reader) {
    unsigned const count = reader.startDictionary();
    lua_createtable(state, 0, static_cast<int>(std::min(count, 1U << 24U)));
    for (unsigned i = 0; i < count; ++i) {
        pushNext(binding, state, reader);
        pushNext(binding, state, reader);
        lua_rawset(state, -3);
    }
    reader.endDictionary();
}

/// Raises and throws.
void pushNext(Binding& binding, lua_State* state, Reader& reader) {
    if (!lua_checkstack(state, 8)) throw Exception("the result is nested too deeply");
    switch (reader.kind()) {
        case Kind::text: {
            CString const& text = reader.readText();
            binding.meter.spendBytes(text.size());
            lua_pushlstring(state, text.data(), text.size());
            return;
        }
        case Kind::array: return pushArray(binding, state, reader);
        case Kind::dictionary: return pushDictionary(binding, state, reader);
        case Kind::object: return pushNew(binding, state, reader.readAnyObject());
        case Kind::function: return pushScriptFunction(binding, state, reader.readFunction());
        default: static_cast<void>(pushPlain(binding, state, reader));
    }
}

}  // namespace

void readArguments(Binding& binding, lua_State* state, Function const& function, Stack& stack) {
    Writer writer(stack);
    int const count = lua_gettop(state);
    for (int i = 1; i <= count; ++i) {
        try {
            // They stay on Lua's stack, and so alive, for the duration of the call.
            readValue(binding, state, i, writer, Object::Hold::borrowed);
        } catch (Exception const& error) {
            if (binding.meter.stopped()) throw;
            throw Exception(argumentName(function, i - 1) + error.message());
        }
    }
}

void readValues(Binding& binding, lua_State* state, int first, Stack& stack) {
    stack.chargeTo(binding.database.account());
    Writer writer(stack);
    int const count = lua_gettop(state);
    for (int i = first; i <= count; ++i) {
        try {
            readValue(binding, state, i, writer, Object::Hold::shared);
        } catch (Exception const& error) {
            if (binding.meter.stopped()) throw;
            throw Exception(CString::format("value %d ", i - first + 1) + error.message());
        }
    }
}

int pushItems(Binding& binding, lua_State* state, Stack const& items) {
    int const before = lua_gettop(state);
    Reader reader(items);
    while (reader.kind() != Kind::none) pushNext(binding, state, reader);
    return lua_gettop(state) - before;
}

int pushText(Binding& binding, lua_State* state, CString const& result, ShortText& text) {
    if (result.size() <= ShortText::capacity) {
        text.size = result.size();
        std::memcpy(text.bytes, result.data(), text.size);
        return shortTextOutcome;
    }
    binding.meter.spendBytes(result.size());
    protect(state, 0, 1, [&result](lua_State* inner) {
        lua_pushlstring(inner, result.data(), result.size());
        return 1;
    });
    return 1;
}

int pushResults(Binding& binding, lua_State* state, Stack const& results, ShortText& text) {
    if (results.empty()) return 0;
    Reader reader(results);
    if (results.size() == 1) {
        if (reader.kind() == Kind::text) return pushText(binding, state, reader.readText(), text);
        if (pushPlain(binding, state, reader)) return 1;
    }
    int const before = lua_gettop(state);
    protect(state, 0, LUA_MULTRET, [&](lua_State* inner) { return pushItems(binding, inner, results); });
    return lua_gettop(state) - before;
}

int pushElements(Binding& binding, lua_State* state, Stack const& results) {
    int const before = lua_gettop(state);
    protect(state, 0, LUA_MULTRET, [&](lua_State* inner) {
        Reader reader(results);
        reader.startArray();
        while (reader.kind() != Kind::none) pushNext(binding, inner, reader);
        return lua_gettop(inner);
    });
    return lua_gettop(state) - before;
}

int finish(lua_State* state, int outcome, ShortText const& text) {
    if (outcome == raisedOutcome) return lua_error(state);
    if (outcome == shortErrorOutcome) luaL_where(state, 1);
    lua_pushlstring(state, text.bytes, text.size);
    if (outcome == shortTextOutcome) return 1;
    lua_concat(state, 2);
    return lua_error(state);
}

}  // namespace nxLC::impl
