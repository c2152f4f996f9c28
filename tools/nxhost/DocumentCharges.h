// What scripts cause in the document, for the account.
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "plst/casts.h"
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
    /// For a value of so many objects.
    void addValue(KeptValues::ItemReference const& value, urString::CString const& name, std::size_t objects = 1);
    void addObjects(std::size_t count);
    /// For a name with its listeners and validators.
    void addName();
    void addCallable(urString::CString const& name);
    /// The charge of a listener that lives as long as its object.
    [[nodiscard]] ur::Charge callable() const;
    /// For as long as a file of that many bytes is being opened.
    [[nodiscard]] ur::Charge room(std::uint64_t bytesOfFile) const;
    /// For as long as items are made of a text, and objects of these.
    [[nodiscard]] ur::Charge roomToPaste(std::string_view text) const;
    /// For the classes that only a copy knows, as long as its objects are made.
    [[nodiscard]] ur::Charge roomForClasses(ur::Reference<nxPLST::Item> const& copied) const;
    /// For as long as there are items of that many objects, without their values.
    [[nodiscard]] ur::Charge roomToCopy(std::size_t objects) const;
    /// Of a text or a list that grows later; empty.
    [[nodiscard]] ur::Charge nothing() const { return {names_.account(), 0}; }
    void setSelected(std::size_t objects);

    /// Charges what a file has brought.
    void addOpened();
    /// Charges the values of new objects and of those below, and the classes that only they have.
    void addValuesOf(std::span<ur::Reference<nxSupport::Object> const> objects);
    /// Charges the objects and records that there are now. They exist already, so the charge cannot be refused.
    void settle() noexcept;

private:
    void addValuesBelow(ur::vector<nxSupport::Object const*> left);

    nxSupport::Document const& document_;
    std::size_t freeObjects_ = 0;
    KeptValues values_;
    ur::Charge names_;
    ur::Charge selected_;
    ur::Charge objects_;
    ur::Charge history_;
};

}  // namespace nxhost
