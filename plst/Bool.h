// The item that holds a boolean.
#pragma once

#include "plst/Item.h"

namespace nxPLST {

/// A boolean.
class NX_API Bool final : public Item {
public:
    Bool() noexcept : Bool(false) {}
    explicit Bool(bool value) noexcept : Item(BoolType), value_(value) {}
    ~Bool() override = default;

    [[nodiscard]] bool value() const noexcept { return value_; }
    void set(bool value) noexcept { value_ = value; }

private:
    [[nodiscard]] ur::Reference<Item> onClone() const override { return ur::make<Bool>(value_); }

    bool value_;
};

}  // namespace nxPLST
