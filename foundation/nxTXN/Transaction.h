// A transaction that ends with its scope.
#pragma once

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

}  // namespace nxTXN
