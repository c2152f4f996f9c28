// says: what nxTXN::edit runs is called without arguments
#include "foundation/nxTXN/Transaction.h"

void move(nxTXN::Manager& manager) {
    nxTXN::edit(manager, "Move", [](int) {});
}
