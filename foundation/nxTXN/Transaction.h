// A transaction that ends with its scope.
#pragma once

#include <utility>

#include "foundation/nxTXN/Manager.h"

namespace nxTXN {

/// Begins a transaction; leaving the scope without `commit` aborts it.
///
/// Transactions begun inside must have ended by the time this one does. The manager must outlive it.
class NX_API Transaction {
public:
    [[nodiscard]] explicit Transaction(Manager& manager, urString::CString const& name = {},
                                       TransactionKind kind = TransactionKind::recorded);
    Transaction(Transaction const&) = delete;
    Transaction& operator=(Transaction const&) = delete;
    /// Reports what a hook throws instead of letting it out.
    ~Transaction();

    /// As `Manager::commit`; false when this transaction has ended already.
    bool commit();
    /// As `Manager::abort`; false when this transaction has ended already.
    bool abort();

private:
    Manager* manager_;  // null once ended
};

/// Runs `change` in a recorded transaction: `edit(document, "Move", [&] { shape->move(x, y); })`. What it throws goes
/// on to the caller when all that it did is taken back. False when transactions are not recorded here.
template <class Change>
bool edit(Manager& manager, urString::CString const& name, Change&& change) {
    Transaction transaction(manager, name);
    std::forward<Change>(change)();
    return transaction.commit();
}

}  // namespace nxTXN
