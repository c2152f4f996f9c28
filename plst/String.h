// The item that holds a text.
#pragma once

#include <concepts>
#include <string_view>
#include <utility>

#include "foundation/urString/CString.h"
#include "plst/Item.h"

namespace nxPLST {

/// A text of bytes, in UTF-8 wherever the framework fills it. It may contain NUL bytes.
class NX_API String final : public Item {
public:
    explicit String(urString::CString const& value) : Item(StringType), value_(value) {}
    explicit String(urString::CString&& value) noexcept : Item(StringType), value_(std::move(value)) {}
    /// Takes a string_view exactly; types that only convert to one use the CString constructor.
    template <std::same_as<std::string_view> View>
    explicit String(View value) : Item(StringType), value_(value) {}
    ~String() override = default;

    [[nodiscard]] urString::CString const& value() const noexcept { return value_; }
    void set(urString::CString const& value) { value_ = value; }

private:
    [[nodiscard]] ur::Reference<Item> onClone() const override { return ur::make<String>(value_); }

    urString::CString value_;
};

}  // namespace nxPLST
