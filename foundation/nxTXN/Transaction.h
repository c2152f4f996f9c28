// A transaction that ends with its scope.
#pragma once

#include <concepts>
#include <utility>

#include "foundation/nxTXN/Manager.h"

namespace nxTXN {

/// Begins a transaction; leaving the scope without `commit` aborts it.
///
/// Transactions begun inside must end before this one. The manager must outlive it.
class NX_API Transaction {
public:
    [[nodiscard]] explicit Transaction(Manager& manager, urString::CString const& name = {},
                                       TransactionKind kind = TransactionKind::recorded);
    Transaction(Transaction const&) = delete;
    Transaction& operator=(Transaction const&) = delete;
    /// Reports exceptions of hooks instead of throwing them.
    ~Transaction();

    /// As `Manager::commit`; false when this transaction has ended already.
    bool commit();
    /// As `Manager::abort`; false when this transaction has ended already.
    bool abort();

private:
    Manager* manager_;  // null once ended
};

/// Runs `change` in a recorded transaction: `edit(document, "Move", [&] { shape->move(x, y); })`. If `change` throws,
/// its changes are reverted and the exception passes to the caller. False when transactions are not recorded here.
template <class Change>
bool edit(Manager& manager, urString::CString const& name, Change&& change) {
    static_assert(std::invocable<Change>, "what nxTXN::edit runs is called without arguments");
    Transaction transaction(manager, name);
    std::forward<Change>(change)();
    return transaction.commit();
}

}  // namespace nxTXN
