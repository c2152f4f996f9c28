// The item that holds a text.
#pragma once

#include <utility>

#include "foundation/urString/CString.h"
#include "plst/Item.h"

namespace nxPLST {

/// A text of bytes, in UTF-8 wherever the framework fills it. NUL bytes are text like any other.
class NX_API String final : public Item {
public:
    explicit String(urString::CString const& value) : Item(StringType), value_(value) {}
    explicit String(urString::CString&& value) noexcept : Item(StringType), value_(std::move(value)) {}
    ~String() override;

    [[nodiscard]] urString::CString const& value() const noexcept { return value_; }
    void set(urString::CString const& value) { value_ = value; }

private:
    [[nodiscard]] ur::Reference<Item> onClone() const override;

    urString::CString value_;
};

}  // namespace nxPLST
