// The document that scripts edit.
#pragma once

#include <map>

#include "foundation/nxRFL/Database.h"
#include "foundation/nxTXN/Manager.h"
#include "support/messaging/Domain.h"
#include "support/properties/Property.h"
#include "tools/nxhost/KeptValues.h"
#include "tools/nxhost/ScriptValue.h"

namespace nxhost {

/// Named values with undo and redo. Each name has a property, created on first use and without a value at first.
///
/// Owned by the host, and destroyed before the history. A change outside a transaction is a step of its own. Errors are
/// raised in the script.
class Document {
public:
    Document(nxTXN::Manager& history, nxSupport::Domain& domain) : history_(history), domain_(domain) {}
    Document(Document const&) = delete;
    Document& operator=(Document const&) = delete;

    [[nodiscard]] ScriptValue get(urString::CString const& name) const;
    /// Null removes the value. Raises in a context that does not allow changes.
    void set(urString::CString const& name, ScriptValue const& value);
    /// The names that have a value.
    [[nodiscard]] ur::vector<urString::CString> names() const;

    /// Calls `function`; its changes are one step, or are undone if it fails.
    void edit(urString::CString const& name, ur::Reference<nxRFL::Function> const& function);
    bool undo();
    bool redo();

    /// Calls `function` with the name and the value after each change, including undo and redo.
    void listen(urString::CString const& name, ur::Reference<nxRFL::Function> const& function);
    /// Calls `function` with each value to be set; its result is set instead. If it fails or returns no value, nothing
    /// is set and the change raises its error.
    void validate(urString::CString const& name, ur::Reference<nxRFL::Function> const& function);

    [[nodiscard]] nxTXN::Manager& history() const noexcept { return history_; }

    /// Charges the values that are set from now on, as long as the document or its history holds them.
    void chargeTo(std::shared_ptr<ur::Account> const& account);

private:
    using Property = nxSupport::Property;
    struct Entry {
        ur::Reference<Property> property;
        ur::Reference<Property> view;  ///< shares the value and is notified of its changes
        ur::vector<urRTB::ScopedConnection> connections;
    };

    Entry& entry(urString::CString const& name);
    /// Charges a listener or a validator of that name.
    void chargeCallable(urString::CString const& name);
    void settleHistory() noexcept;

    nxTXN::Manager& history_;
    nxSupport::Domain& domain_;
    std::map<urString::CString, Entry> entries_;
    KeptValues kept_;
    ur::Charge entriesCharge_;
    ur::Charge historyCharge_;
};

/// Registers the document's class.
void exposeDocument(nxRFL::Database& database);

}  // namespace nxhost
