// Transactions of contexts.
#include "tools/nxhost/HostDomain.h"

#include <utility>

namespace nxhost {

using nxSupport::Context;

// [transactions]
namespace {

/// Undecided contexts have none; the contexts inside them have their own.
bool isTransaction(Context const& context) { return context.transactionType() != nxSupport::TxnUndecided; }

}  // namespace

void HostDomain::onBeginContext(Context const& context) {
    if (!isTransaction(context)) return;
    failed_ = false;
    if (context.interactiveMode()) return history_.beginCoalescing("Interaction", this);
    history_.begin(Context::modeToString(context.mode()),
                   static_cast<nxTXN::TransactionKind>(context.transactionType()));
}

void HostDomain::onEndContext(Context const& context) {
    if (!isTransaction(context)) return;
    if (std::exchange(failed_, false)) {
        history_.abort();
    } else {
        history_.commit();
    }
    if (context.mode() == Context::InteractionEnd) history_.endCoalescing();
}
// [transactions]

}  // namespace nxhost
