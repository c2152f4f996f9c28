// Appends items to a stack.
#pragma once

#include "foundation/nxRFL/Stack.h"

namespace nxRFL {

/// Writes items one after the other; containers are opened, filled and closed.
///
/// A container holds what was written into it, whatever count was announced. The destructor closes open containers.
/// A stack has one writer at a time; read it only after the writer has closed all containers or is destroyed.
class NX_API Writer {
public:
    explicit Writer(Stack& stack) noexcept : stack_(stack) {}
    Writer(Writer const&) = delete;
    Writer& operator=(Writer const&) = delete;
    ~Writer() {
        if (open_ != impl::nowhere) closeAll();
    }

    void writeNull() { append(std::monostate()); }
    void writeBool(bool value) { append(value); }
    void writeDouble(double value) { append(value); }
    void writeFloat(float value) { append(static_cast<double>(value)); }
    void writeInt(int value) { append(static_cast<double>(value)); }
    void writeUnsigned(unsigned value) { append(static_cast<double>(value)); }
    void writeText(urString::CString text) { append(std::move(text)); }
    /// An empty handle writes null.
    void writeObject(Object object) {
        if (object.null()) return writeNull();
        append(std::move(object));
    }
    /// Writes a handle of these parts. Requires: `pointer` is not null.
    void writeObject(void* pointer, Class const& objectClass, Object::Hold hold, Object::Known known) {
        append(std::in_place_type<Object>, pointer, objectClass, hold, known);
    }
    /// Null writes null.
    void writeFunction(ur::Reference<Function> function);
    /// Copies the first item of `stack` with its content; writes null when there is none.
    void writeItem(Stack const& stack) { writeItemAt(stack, 0); }

    /// `count` elements follow.
    void startArray([[maybe_unused]] unsigned count) { open(impl::Container::Kind::array); }
    void endArray() { close(impl::Container::Kind::array); }
    /// `count` entries follow: a text as the key, then any item as its value.
    void startDictionary([[maybe_unused]] unsigned count) { open(impl::Container::Kind::dictionary); }
    void endDictionary() { close(impl::Container::Kind::dictionary); }

private:
    friend class Reader;

    template <class T, class... Parts>
    void append(T&& value, Parts&&... parts) {
        constexpr bool isText = std::is_same_v<std::decay_t<T>, urString::CString>;
        if (open_ != impl::nowhere) checkKey(isText);
        if (stack_.charge_) {
            if constexpr (isText) {
                stack_.chargeValue(Stack::ownedBytes(value));
            } else {
                stack_.chargeValue(0);
            }
        }
        stack_.values_.emplace_back(std::forward<T>(value), std::forward<Parts>(parts)...);
        count();
    }
    void writeItemAt(Stack const& stack, std::size_t from);
    [[nodiscard]] impl::Container& head(std::size_t at) const { return std::get<impl::Container>(stack_.values_[at]); }
    [[nodiscard]] std::uint32_t distanceToOpen(std::size_t at) const noexcept;
    void checkKey(bool isText) const;
    void count() { ++(open_ == impl::nowhere ? stack_.items_ : head(open_).items); }
    void open(impl::Container::Kind kind);
    void close(impl::Container::Kind kind);
    void closeAll();

    Stack& stack_;
    std::size_t open_ = impl::nowhere;  ///< the innermost open container
};

}  // namespace nxRFL
