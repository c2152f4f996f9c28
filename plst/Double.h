// The item that holds a number.
#pragma once

#include "plst/Item.h"

namespace nxPLST {

/// A number; there is no integer kind.
class NX_API Double final : public Item {
public:
    Double() noexcept : Double(0.0) {}
    explicit Double(double value) noexcept : Item(DoubleType), value_(value) {}
    ~Double() override = default;

    [[nodiscard]] double value() const noexcept { return value_; }
    void set(double value) noexcept { value_ = value; }

private:
    [[nodiscard]] ur::Reference<Item> onClone() const override { return ur::make<Double>(value_); }

    double value_;
};

}  // namespace nxPLST
