// What scripts cause in the document, for the account.
#pragma once

#include <memory>

#include "support/documents/Document.h"
#include "tools/nxhost/KeptValues.h"

namespace nxhost {

/// Charges the objects, values, listeners and history of a document that scripts change. What was there before the
/// scripts is free. Owned by the script's document, before which the account is known only to the database.
class DocumentCharges {
public:
    explicit DocumentCharges(nxSupport::Document const& document) : document_(document) {}

    void chargeTo(std::shared_ptr<ur::Account> const& account);

    // These are called before something is made, and throw `ur::BudgetSpent` to prevent it.
    void addValue(KeptValues::ItemReference const& value, urString::CString const& name);
    void addObject();
    /// For a name with its listeners and validators.
    void addName();
    void addCallable(urString::CString const& name);
    /// The charge of a listener that lives as long as its object.
    [[nodiscard]] ur::Charge callable() const;
    /// For as long as a file of that many bytes is being opened.
    [[nodiscard]] ur::Charge room(std::uint64_t bytesOfFile) const;

    /// Charges what a file has brought.
    void addOpened();
    /// Charges the objects and records that there are now. They exist already, so the charge cannot be refused.
    void settle() noexcept;

private:
    nxSupport::Document const& document_;
    std::size_t freeObjects_ = 0;
    KeptValues values_;
    ur::Charge names_;
    ur::Charge objects_;
    ur::Charge history_;
};

}  // namespace nxhost
