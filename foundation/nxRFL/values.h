// Reads native values and objects from a stack, and writes them to one.
#pragma once

#include <array>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/nxRFL/Callback.h"
#include "foundation/nxRFL/Reader.h"
#include "foundation/nxRFL/Writer.h"
#include "foundation/nxRFL/typeName.h"
#include "foundation/urString/IString.h"
#include "foundation/urString/NearestName.h"

namespace nxRFL {

// A value type is converted by two functions in this namespace or its own, `read(Reader&, T&)` and `write(Writer&, T
// const&)`. Objects of all other classes are passed by pointer, by ur::Reference or, if they cannot be null, by
// reference.

template <std::same_as<bool> T>
void read(Reader& reader, T& value) {
    value = reader.readBool();
}
inline void read(Reader& reader, double& value) { value = reader.readDouble(); }
inline void read(Reader& reader, float& value) { value = reader.readFloat(); }
inline void read(Reader& reader, urString::CString& value) { value = reader.readText(); }
inline void read(Reader& reader, std::string& value) { value = reader.readText().view(); }
inline void read(Reader& reader, urString::IString& value) {
    value.assign(reader.readText().view(), urString::Encoding::utf8);
}
template <urString::FilePath Path>
void read(Reader& reader, Path& value) {
    urString::IString text;
    read(reader, text);
    value = text;
}
inline void read(Reader& reader, ur::Reference<Function>& value) { value = reader.readFunction(); }
inline void read(Reader& reader, Object& value) { value = reader.readAnyObject(); }

// Exactly bool, since pointers convert to bool.
template <std::same_as<bool> T>
void write(Writer& writer, T value) {
    writer.writeBool(value);
}
inline void write(Writer& writer, double value) { writer.writeDouble(value); }
inline void write(Writer& writer, float value) { writer.writeFloat(value); }
inline void write(Writer& writer, urString::CString value) { writer.writeText(std::move(value)); }
inline void write(Writer& writer, char const* value) { writer.writeText(value); }
template <class T>
requires(std::same_as<T, std::string> || std::same_as<T, std::string_view>) void write(Writer& writer, T const& value) {
    writer.writeText(urString::CString(value));
}
// An IString and a path are UTF-8 text to scripts.
template <std::same_as<urString::IString> T>
void write(Writer& writer, T const& value) {
    writer.writeText(value.asUTF8());
}
template <urString::FilePath Path>
void write(Writer& writer, Path const& value) {
    write(writer, urString::IString(value));
}
inline void write(Writer& writer, ur::Reference<Function> value) { writer.writeFunction(std::move(value)); }
inline void write(Writer& writer, Object value) { writer.writeObject(std::move(value)); }

namespace impl {

/// Numbers are passed as doubles: 64-bit numbers are exact up to 2^53, and larger ones are not read.
template <WholeNumber T>
struct WholeRange {
    using Limits = std::numeric_limits<T>;
    static constexpr bool isExact = Limits::digits <= 53;
    static constexpr double greatest = isExact ? static_cast<double>(Limits::max()) : 9007199254740992.0;
    static constexpr double least = isExact ? static_cast<double>(Limits::lowest()) : Limits::is_signed ? -greatest : 0;
};

[[noreturn]] NX_API void failOnInexact(std::string_view number);

/// Raises for an integer that no double equals.
template <WholeNumber T>
[[nodiscard]] double doubleOf(T value) {
    using Range = WholeRange<T>;
    auto const number = static_cast<double>(value);
    if constexpr (!Range::isExact) {
        bool const isSmall = value >= static_cast<T>(Range::least) && value <= static_cast<T>(Range::greatest);
        if (!isSmall) [[unlikely]] {
            // The double nearest to the largest integers is 2^63 or 2^64, which is no T.
            bool const isT = number < static_cast<double>(Range::Limits::max());
            if (!isT || static_cast<T>(number) != value) failOnInexact(std::to_string(value));
        }
    }
    return number;
}

}  // namespace impl

template <WholeNumber T>
void read(Reader& reader, T& value) {
    value = static_cast<T>(reader.readWhole(impl::WholeRange<T>::least, impl::WholeRange<T>::greatest));
}
/// Raises for an integer that no double equals, which is beyond 2^53.
template <WholeNumber T>
void write(Writer& writer, T value) {
    writer.writeDouble(impl::doubleOf(value));
}

template <class T>
requires std::is_class_v<T>
void read(Reader& reader, T*& object) { object = static_cast<T*>(reader.readObjectOrNull(ur::TypeInfo::of<T>())); }
template <class T>
void read(Reader& reader, ur::Reference<T>& object) {
    object.reset(static_cast<T*>(reader.readObjectOrNull(ur::TypeInfo::of<T>())));
}
/// Scripts have no const objects.
template <class T>
requires std::is_class_v<T>
void write(Writer& writer, T* object) {
    using Plain = std::remove_const_t<T>;
    writer.writeObject(Object(const_cast<Plain*>(object), impl::defaultTypeUtil<Plain>()));
}
template <class T>
void write(Writer& writer, ur::Reference<T> const& object) {
    write(writer, object.get());
}
/// Transfers ownership to the script.
template <WalkState T>
void write(Writer& writer, std::unique_ptr<T> state) {
    IteratorState* const base = state.release();
    writer.writeObject(Object::give(base, impl::ownableType<IteratorState>));
}

/// Null becomes an empty callable. Errors go to `Callback::callHandler`; the result is then a default value.
template <class Result, class... Arguments>
void read(Reader& reader, std::function<Result(Arguments...)>& callable);

namespace impl {

/// Reads an element or a member of a value.
template <class T>
void readPart(Reader& reader, T& part) {
    static_assert(
        requires { read(reader, part); },
        "no nxRFL::read(Reader&, T&) for a value of this type: list its members (foundation/ur/describe.h) or add it; "
        "for an enumeration, its names");
    read(reader, part);
}
template <class T>
void writePart(Writer& writer, T const& part) {
    static_assert(
        requires { write(writer, part); },
        "no nxRFL::write(Writer&, T const&) for a value of this type: list its members (foundation/ur/describe.h) or "
        "add it; for an enumeration, its names");
    write(writer, part);
}

}  // namespace impl

template <class T>
void read(Reader& reader, ur::vector<T>& values) {
    unsigned const count = reader.startArray();
    values.clear();
    values.reserve(count);
    for (unsigned i = 0; i < count; ++i) {
        T value{};
        impl::readPart(reader, value);
        values.push_back(std::move(value));
    }
    reader.endArray();
}
template <class T>
void write(Writer& writer, ur::vector<T> const& values) {
    writer.startArray(static_cast<unsigned>(values.size()));
    for (T const& value : values) impl::writePart(writer, value);
    writer.endArray();
}

template <class T, class Less>
void write(Writer& writer, ur::map<urString::CString, T, Less> const& entries) {
    writer.startDictionary(static_cast<unsigned>(entries.size()));
    for (auto const& [key, value] : entries) {
        writer.writeText(key);
        impl::writePart(writer, value);
    }
    writer.endDictionary();
}

/// Requires as many elements as the array has.
template <class T, std::size_t size>
void read(Reader& reader, std::array<T, size>& values) {
    Reader const before(reader);
    unsigned const count = reader.startArray();
    if (count != size) before.complain(urString::CString::format("must be an array of %zu, but has %u", size, count));
    for (T& value : values) impl::readPart(reader, value);
    reader.endArray();
}
template <class T, std::size_t size>
void write(Writer& writer, std::array<T, size> const& values) {
    writer.startArray(static_cast<unsigned>(size));
    for (T const& value : values) impl::writePart(writer, value);
    writer.endArray();
}

template <impl::TextMap Map>
void read(Reader& reader, Map& entries) {
    entries.clear();
    for (unsigned i = reader.startDictionary(); i > 0; --i) {
        typename Map::key_type key(reader.readText().view());
        impl::readPart(reader, entries[std::move(key)]);
    }
    reader.endDictionary();
}
template <impl::TextMap Map>
void write(Writer& writer, Map const& entries) {
    writer.startDictionary(static_cast<unsigned>(entries.size()));
    for (auto const& [key, value] : entries) {
        writer.writeText(urString::CString(key));
        impl::writePart(writer, value);
    }
    writer.endDictionary();
}

/// An empty optional is nil.
template <class T>
void read(Reader& reader, std::optional<T>& value) {
    if (!reader.isNull()) return impl::readPart(reader, value.emplace());
    reader.readNull();
    value.reset();
}
template <class T>
void write(Writer& writer, std::optional<T> const& value) {
    if (value) return impl::writePart(writer, *value);
    writer.writeNull();
}

/// Passes the name of the value.
template <ur::NamedEnum T>
void read(Reader& reader, T& value) {
    Reader const before(reader);
    urString::CString const& name = reader.readText();
    if (auto const named = ur::valueNamed<T>(name)) {
        value = *named;
        return;
    }
    urString::CString complaint("must be");
    char const* separator = " ";
    for (auto const& [any, offered] : namesOf(static_cast<T*>(nullptr))) {
        complaint.append(separator).append("\"").append(offered).append("\"");
        separator = " or ";
    }
    before.complain(complaint.append(", but is \"").append(name).append("\""));
}
template <ur::NamedEnum T>
void write(Writer& writer, T value) {
    writer.writeText(urString::CString(ur::nameOf(value)));
}

namespace impl {

/// Raises an error for a key that no member of a structure has.
template <class T>
[[noreturn]] void failOnMember(Reader const& reader, T const& value, std::string_view key) {
    urString::NearestName nearest(key);
    ur::listConstMembers(value, [&nearest](char const* name, auto const&) { nearest.offer(name); });
    reader.failOnKey("structure", key, nearest.question());
}

}  // namespace impl

/// A dictionary of the members. When an entry is missing, the member keeps its value.
template <ur::ListsMembers T>
void read(Reader& reader, T& value) {
    for (unsigned i = reader.startDictionary(); i > 0; --i) {
        urString::CString const& key = reader.readText();
        bool isKnown = false;
        ur::visitMembers(value, [&](char const* name, auto& member) {
            if (isKnown || key != std::string_view(name)) return;
            isKnown = true;
            impl::readPart(reader, member);
        });
        if (!isKnown) impl::failOnMember(reader, value, key);
    }
    reader.endDictionary();
}
template <ur::ListsMembers T>
void write(Writer& writer, T const& value) {
    unsigned count = 0;
    ur::listConstMembers(value, [&count](char const*, auto const&) { ++count; });
    writer.startDictionary(count);
    ur::listConstMembers(value, [&writer](char const* name, auto const& member) {
        writer.writeText(name);
        impl::writePart(writer, member);
    });
    writer.endDictionary();
}

/// A pair is an array of two elements.
template <class First, class Second>
void write(Writer& writer, std::pair<First, Second> const& pair) {
    writer.startArray(2);
    impl::writePart(writer, pair.first);
    impl::writePart(writer, pair.second);
    writer.endArray();
}

template <class T>
concept Readable = requires(Reader& reader, T& value) {
    read(reader, value);
};
template <class T>
concept Writable = requires(Writer& writer, T&& value) {
    write(writer, std::forward<T>(value));
};

/// Writes a value, or an object passed by reference.
template <class T>
void writeAny(Writer& writer, T&& value) {
    if constexpr (Writable<T>) {
        write(writer, std::forward<T>(value));
    } else {
        static_assert(!std::is_enum_v<std::remove_cvref_t<T>>,
                      "no names of this enumeration's values: add namesOf (foundation/ur/describe.h)");
        static_assert(std::is_lvalue_reference_v<T>,
                      "an object crosses over by pointer or reference; for a value list its members "
                      "(foundation/ur/describe.h) or add nxRFL::read and write");
        write(writer, &value);
    }
}

namespace impl {

/// A stack with the arguments of a call.
template <class... Arguments>
Stack argumentsOf(Arguments&&... arguments) {
    Stack values;
    {
        [[maybe_unused]] Writer writer(values);
        (writeAny<Arguments>(writer, std::forward<Arguments>(arguments)), ...);
    }
    return values;
}

}  // namespace impl

/// A script function that throws the script's error, an `Exception` with the script's stack. Once the script's state
/// has closed, it does nothing and returns an empty result. As a parameter it accepts a script function like
/// `std::function`, whose errors go to the database's error handler instead.
template <class Signature>
class ThrowingFunction : public std::function<Signature> {
public:
    using std::function<Signature>::function;
};
template <class Signature>
struct TypeName<ThrowingFunction<Signature>> : TypeName<ur::Reference<Function>> {};

namespace impl {

/// The result of a call to a script function. Raises when the results do not fit.
template <class Result>
Result resultOf(Stack const& results, Function const& function) {
    static_assert(
        requires(Reader & reader, Result & value) { read(reader, value); },
        "no nxRFL::read(Reader&, T&) for the result of a script function: list its members "
        "(foundation/ur/describe.h) or add it");
    Result result{};
    Reader reader = Reader::ofResults(results, function);
    read(reader, result);
    return result;
}

}  // namespace impl

template <class Result, class... Arguments>
void read(Reader& reader, ThrowingFunction<Result(Arguments...)>& callable) {
    callable = nullptr;
    ur::Reference<Function> function = reader.readFunction();
    if (!function) return;
    callable = [function = std::move(function)](Arguments... arguments) -> Result {
        Stack const values = impl::argumentsOf<Arguments...>(std::forward<Arguments>(arguments)...);
        Stack results;
        ur::Reference<Function> const self(function.get());  // the call may drop this callable
        if (self->canRun()) self->call(values, results);
        if constexpr (!std::is_void_v<Result>) {
            bool const hasRun = !results.empty() || self->canRun();
            return hasRun ? impl::resultOf<Result>(results, *self) : Result{};
        }
    };
}

/// Errors go to the database's error handler; the result is then empty.
template <class Result, class... Arguments>
void read(Reader& reader, std::function<Result(Arguments...)>& callable) {
    callable = nullptr;
    ur::Reference<Function> function = reader.readFunction();
    if (!function) return;
    callable = [callback = Callback(std::move(function))](Arguments... arguments) -> Result {
        Callback const self(callback.function());  // the call may drop this callable
        if (!self.function()->canRun()) return Result();
        try {
            Stack const values = impl::argumentsOf<Arguments...>(std::forward<Arguments>(arguments)...);
            Stack results;
            bool const succeeded = self.call(values, results);
            if constexpr (!std::is_void_v<Result>) {
                if (succeeded) return impl::resultOf<Result>(results, *self.function());
            }
        } catch (Exception const& error) {
            self.callHandler(error);
        }
        return Result();
    };
}

}  // namespace nxRFL
