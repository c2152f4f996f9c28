// Scoped transactions.
#include "foundation/nxTXN/Transaction.h"

#include <utility>

#include "foundation/urOS/reportException.h"

namespace nxTXN {

Transaction::Transaction(Manager& manager, urString::CString const& name, TransactionKind kind) : manager_(&manager) {
    manager.begin(name, kind);
}

Transaction::~Transaction() {
    try {
        abort();
    } catch (...) {
        urOS::reportException("Transaction", std::current_exception());
    }
}

bool Transaction::commit() {
    Manager* const manager = std::exchange(manager_, nullptr);
    return manager && manager->commit();
}

bool Transaction::abort() {
    Manager* const manager = std::exchange(manager_, nullptr);
    return manager && manager->abort();
}

}  // namespace nxTXN
