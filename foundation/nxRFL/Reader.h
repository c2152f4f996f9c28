// Reads items from a stack.
#pragma once

#include <utility>

#include "foundation/nxRFL/Stack.h"

namespace nxRFL {

/// The kind of an item; `none` is the end of the stack or of the open container.
enum class Kind { none, null, boolean, number, text, array, dictionary, object, function };

/// Reads items one after the other from the first on; containers are opened, read and closed.
///
/// An item of another kind than requested raises an `Exception` with its position, the expected and the actual kind.
/// The stack must outlive the reader and not change meanwhile.
class NX_API Reader {
public:
    explicit Reader(Stack const& stack) noexcept : stack_(stack) {}
    /// For the arguments of a call to `function`; messages name the function.
    Reader(Stack const& stack, Function const& function) noexcept : stack_(stack), function_(&function) {}
    /// For the results of a call to `function`; messages name the function, or its place in a script.
    [[nodiscard]] static Reader ofResults(Stack const& stack, Function const& function) noexcept {
        Reader reader(stack, function);
        reader.readsResults_ = true;
        return reader;
    }

    /// The kind of the next item.
    [[nodiscard]] Kind kind() const noexcept {
        // In the order of the alternatives of impl::Value.
        constexpr Kind kinds[] = {Kind::null,  Kind::boolean, Kind::number,  Kind::text,
                                  Kind::array, Kind::object,  Kind::function};
        if (at_ >= end()) return Kind::none;
        impl::Value const& value = stack_.values_[at_];
        auto const* const container = std::get_if<impl::Container>(&value);
        bool const isDictionary = container && container->kind == impl::Container::Kind::dictionary;
        return isDictionary ? Kind::dictionary : kinds[value.index()];
    }
    /// Whether the next item exists and is null.
    [[nodiscard]] bool isNull() const noexcept { return next<std::monostate>() != nullptr; }

    void readNull() { take<std::monostate>("null"); }
    bool readBool() { return take<bool>("boolean"); }
    double readDouble() { return take<double>("number"); }
    /// Numbers too large for a float become infinite.
    float readFloat() { return static_cast<float>(readDouble()); }
    /// Raises for a number that is not whole or is outside the type's range.
    int readInt();
    unsigned readUnsigned();
    /// A whole number from `least` to `greatest`, both exactly representable.
    double readWhole(double least, double greatest);
    /// Valid until the stack changes.
    urString::CString const& readText() { return take<urString::CString>("string"); }

    /// Returns the number of elements, which follow. Accepts an empty dictionary as an empty array and vice versa:
    /// scripts cannot distinguish them.
    unsigned startArray() { return enter(impl::Container::Kind::array, "array"); }
    /// Skips the elements that were not read.
    void endArray() noexcept { leave(); }
    /// Returns the number of entries, which follow: a text as the key, then the value.
    unsigned startDictionary() { return enter(impl::Container::Kind::dictionary, "dictionary") / 2; }
    void endDictionary() noexcept { leave(); }

    /// The object as one of class `type`. Null for a null item.
    void* readObjectOrNull(ur::TypeInfo type);
    void* readObjectOrNull(Class const& expected);
    /// The same, but a null item raises.
    void* readObject(ur::TypeInfo type);
    /// The object of any class; an empty handle for a null item.
    Object const& readAnyObject();
    /// Null for a null item. Valid until the stack changes.
    ur::Reference<Function> const& readFunction();

    /// The account that pays for the stack; null if there is none.
    [[nodiscard]] std::shared_ptr<ur::Account> const& account() const noexcept { return stack_.charge_.account(); }

    /// Appends a copy of the next item, of any kind, to `out`.
    void readItem(Stack& out);
    void skip() noexcept;

    /// Raises an error for the next item, which is not what the caller expects.
    [[noreturn]] void fail(std::string_view expected) const;
    /// Raises an error for the next item: its place, followed by `complaint`, such as "must be a multiple of 4".
    [[noreturn]] void complain(std::string_view complaint) const;
    /// Raises an error for the open container, which represents a `name` such as "range1D" but has an unknown key.
    /// `hint` follows the message.
    [[noreturn]] void failOnKey(std::string_view name, std::string_view key, std::string_view hint = {}) const;

private:
    [[nodiscard]] std::size_t end() const noexcept {
        return open_ == impl::nowhere ? stack_.values_.size() : open_ + head().length;
    }
    template <class T>
    [[nodiscard]] T const* next() const noexcept {
        return at_ < end() ? std::get_if<T>(&stack_.values_[at_]) : nullptr;
    }
    template <class T>
    T const& take(std::string_view expected) {
        T const* const value = next<T>();
        if (!value) [[unlikely]]
            fail(expected);
        ++at_;
        return *value;
    }
    [[nodiscard]] impl::Container const& head() const { return std::get<impl::Container>(stack_.values_[open_]); }
    [[nodiscard]] std::size_t behind(std::size_t at) const noexcept;
    unsigned enter(impl::Container::Kind kind, std::string_view expected);
    void leave() noexcept;
    [[nodiscard]] void* cast(Object const& object, ur::TypeInfo type) const;
    [[nodiscard]] urString::CString classNameOf(Object const& object) const;
    [[nodiscard]] urString::CString nameOf(ur::TypeInfo type) const;
    [[nodiscard]] urString::CString found() const;
    [[nodiscard]] urString::CString placeOf(std::size_t at, std::size_t container) const;
    [[nodiscard]] urString::CString outermostPlace(unsigned ordinal) const;
    [[noreturn]] void raise(urString::CString const& place, std::string_view complaint) const;

    Stack const& stack_;
    Function const* function_ = nullptr;
    bool readsResults_ = false;  ///< of the function; otherwise its arguments
    std::size_t at_ = 0;
    std::size_t open_ = impl::nowhere;  ///< the innermost open container
};

/// Reads the next item, a dictionary: calls `readEntry(key)` for each entry. `readEntry` reads the value and returns
/// true, or returns false for an unknown key. An unknown key, or more than `count` entries, raises an `Exception` that
/// calls the dictionary `name`. Entries may be missing.
template <class ReadEntry>
void readDictionary(Reader& reader, std::string_view name, unsigned count, ReadEntry&& readEntry) {
    for (unsigned i = reader.startDictionary(); i > 0; --i) {
        urString::CString const& key = reader.readText();
        if (count-- == 0 || !readEntry(key)) reader.failOnKey(name, key);
    }
    reader.endDictionary();
}

}  // namespace nxRFL
