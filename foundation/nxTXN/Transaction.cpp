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
    if (!manager) return false;
    std::size_t const depth = manager->depth();
    try {
        return manager->commit();
    } catch (...) {
        if (manager->depth() == depth) manager_ = manager;  // still open, for want of memory: it will be aborted
        throw;
    }
}

bool Transaction::abort() {
    Manager* const manager = std::exchange(manager_, nullptr);
    return manager && manager->abort();
}

}  // namespace nxTXN
