// Begins and ends the contexts of an interaction.
#include "support/documents/Interaction.h"

#include "foundation/urOS/FirstError.h"

namespace nxSupport {

Interaction::Interaction(Domain& domain, Document& document, urString::CString const& name)
    : domain_(domain), transaction_(document.history(), name) {
    document.setStepName(name);
    Context const context(&domain, Context::InteractionStart);
}

Interaction::~Interaction() {
    urOS::FirstError errors("nxSupport::Interaction");
    if (isOpen_) errors.guard([&] { end(); });
    errors.print();
}  // the transaction takes everything back

bool Interaction::finish() {
    if (!isOpen_) return false;
    end();
    return transaction_.commit();
}

void Interaction::end() {
    isOpen_ = false;
    Context const context(&domain_, Context::InteractionEnd);
}

}  // namespace nxSupport
