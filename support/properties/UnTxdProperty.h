// A property without history.
#pragma once

#include <cstdint>
#include <utility>

#include "support/properties/Property.h"
#include "support/properties/UnTxdPropertyData.h"

namespace nxSupport {

/// A property that no history records. It is destroyed with its last reference.
class NX_API UnTxdProperty final : public Property {
public:
    explicit UnTxdProperty(urString::CString const& name);
    UnTxdProperty(urString::CString const& name, ItemReference value);
    /// Creates a member of those that share `data`.
    UnTxdProperty(urString::CString const& name, ur::Reference<UnTxdPropertyData> data);

    [[nodiscard]] bool isTransacted() const override { return false; }
    bool setValue(ItemReference value, PropertyModType type) override { return modify(std::move(value), type); }
    bool setValue(ItemReference value) override { return modify(std::move(value)); }
    [[nodiscard]] ItemReference value() const override { return data_->value(); }
    void ref() const noexcept override { ++refCount_; }
    void unref() const noexcept override {
        if (--refCount_ == 0) delete this;
    }
    [[nodiscard]] TxnModifiedSignal* txnModifiedSignal() override { return nullptr; }

    /// The shared value; never null.
    [[nodiscard]] ur::Reference<UnTxdPropertyData> const& data() const noexcept { return data_; }
    /// Moves this property to `data`, and notifies its own listeners of all three stages.
    void attachData(ur::Reference<UnTxdPropertyData> const& data);

private:
    template <class Member>
    friend class MemberList;

    ~UnTxdProperty() override;

    mutable std::int32_t refCount_ = 0;
    ur::Reference<MemberEntry<UnTxdProperty>> const entry_ = ur::make<MemberEntry<UnTxdProperty>>(*this);
    ur::Reference<UnTxdPropertyData> data_;
};

}  // namespace nxSupport
