// Properties: a document keeps values, a user interface mirrors them and a user undoes changes.
#include <cstdio>

#include "foundation/nxTXN/Transaction.h"
#include "plst/JsonReport.h"
#include "plst/make.h"
#include "support/properties/Prop.h"
#include "support/properties/savedValues.h"

using nxSupport::BoundedDouble;
using nxSupport::Prop;
using nxSupport::Property;

namespace {

void saveAndLoad(nxTXN::Manager& document, Prop<BoundedDouble> const& radius, Prop<BoundedDouble> const& other) {
    // [save]
    nxSupport::PropertySet panel;
    panel.insert(radius.pty());
    panel.insert(other.pty());
    auto const saved = nxSupport::saveValues(panel);
    saved->insert("unknown", 1);
    edit(document, "Load", [&] {
        for (auto const& name : nxSupport::loadValues(panel, *saved).extra)
            std::printf("no property %s\n", name.c_str());
    });
    // [save]
}

}  // namespace

int main() {
    // [share]
    nxTXN::Manager document;
    document.begin("New", nxTXN::TransactionKind::none);  // the initial content of a document is not a step to undo
    auto radius = Prop<BoundedDouble>::createTxd(document, "brush.radius", BoundedDouble(5, 0, 100));
    Prop<BoundedDouble> slider(radius.pty()->cloneUnTxd("slider"));  // the user interface's handle
    document.commit();

    auto const listener = slider.subscribe([](BoundedDouble const& value, nxSupport::PropertyModType type) {
        if (type == nxSupport::ModifyPerform) std::printf("slider shows %g\n", value.value());
    });
    edit(document, "Radius", [&] { radius.set(BoundedDouble(20, 0, 100)); });
    document.undo();  // the slider follows
    // [share]

    // [validate]
    auto const validator = radius.pty()->subscribeValidation([](auto const&, Property::ItemReference& candidate) {
        auto bounded = nxPLST::valueOf<BoundedDouble>(candidate);
        if (bounded.value() <= bounded.maxValue()) return;
        bounded.setValue(bounded.maxValue());
        candidate = nxPLST::itemOf(bounded);
    });
    bool asGiven = false;
    edit(document, "Radius", [&] { asGiven = slider.set(BoundedDouble(500, 0, 100)); });
    std::printf("%g%s\n", radius.get().value(), asGiven ? "" : ", corrected");
    // [validate]

    // [join]
    Prop<BoundedDouble> other;
    edit(document, "New eraser",
         [&] { other = Prop<BoundedDouble>::createTxd(document, "eraser.radius", BoundedDouble(7, 0, 100)); });
    edit(document, "Link sizes", [&] { radius.pty()->join(other.pty()); });
    document.undo();
    std::printf("%g and %g again\n", radius.get().value(), other.get().value());
    // [join]

    saveAndLoad(document, radius, other);
    return 0;
}
