// Panels and their rows for scripts.
#include "tools/nxhost/Panel.h"

#include "foundation/nxRFL/ExposeClass.h"
#include "tools/nxhost/Document.h"

namespace nxhost {

using ur::Reference;
using urString::CString;

namespace {

/// The bytes of a panel, which has a row for each property of the first object at most.
std::size_t bytesOfPanel(Objects const& objects) {
    constexpr std::size_t bytesOfRow = 1024;   // with two properties
    constexpr std::size_t bytesOfObject = 64;  // in the panel
    constexpr std::size_t bytesOfPlace = 16;   // of an object in a row
    std::size_t const rows = objects.empty() ? 0 : objects.front()->objectClass().properties().size();
    return bytesOfRow * (rows + 1) + objects.size() * (bytesOfObject + rows * bytesOfPlace);
}

CString const& labelOf(nxSupport::PropertyDescription const& description) {
    return description.label.empty() ? description.name : description.label;
}

ur::vector<nxSupport::ScriptValue> choicesOf(nxSupport::PropertyDescription const& description) {
    ur::vector<nxSupport::ScriptValue> choices;
    for (auto const& choice : description.choices) choices.push_back({choice.item()});
    return choices;
}

}  // namespace

Panel::Panel(Document& document, Objects objects)
    : document_(document),
      objects_(std::move(objects)),
      charge_(document.charges().nothing().account(), bytesOfPanel(objects_)),
      panel_(pointersTo(objects_)) {}

ur::vector<Reference<Panel::Row>> Panel::rows() {
    ur::vector<Reference<Row>> rows;
    for (auto const& row : panel_.rows()) rows.push_back(ur::make<Row>(*this, row));
    return rows;
}

Reference<Panel::Row> Panel::find(CString const& property) {
    auto const* const row = panel_.find(property);
    return row ? ur::make<Row>(*this, *row) : nullptr;
}

PropertyValue Panel::Row::value() const {
    if (isMixed()) return {};
    nxSupport::Object const& first = *panel_->objects_.front();
    if (description().reference) return {.object = first.target(description().name)};
    return {.value = {first.value(description().name)}};
}

void Panel::Row::setValue(PropertyValue const& value) {
    Reference<Panel> const panel = panel_;  // a listener may let go of the row
    CString const step = CString("Set ").append(labelOf(description()));
    panel->document_.setValue(pointersTo(panel->objects_), description().name, value.item(), step);
}

void exposePanels(nxRFL::Database& database) {
    using Row = Panel::Row;
    nxRFL::ExposeClass<Row>(database, "nxhost::PanelRow")
        .setAliveTest([](void const* row) { return static_cast<Row const*>(row)->isAlive(); })
        .addProperty("name", [](Row& self) { return self.description().name; })
        .addProperty("label", [](Row& self) { return labelOf(self.description()); })
        .addProperty("description", [](Row& self) { return self.description().description; })
        .addProperty("group", [](Row& self) { return self.description().group; })
        .addProperty("unit", [](Row& self) { return self.description().unit; })
        .addProperty("control", [](Row& self) { return self.description().control; })
        .addProperty("minimum", [](Row& self) { return self.description().minimum; })
        .addProperty("maximum", [](Row& self) { return self.description().maximum; })
        .addProperty("step", [](Row& self) { return self.description().step; })
        .addProperty("choices", [](Row& self) { return choicesOf(self.description()); })
        .addProperty("readOnly", [](Row& self) { return self.description().readOnly; })
        .addProperty("isMixed", [](Row& self) { return self.isMixed(); })
        .addProperty("value", &Row::value, &Row::setValue);
    nxRFL::ExposeClass<Panel>(database, "nxhost::Panel")
        .setAliveTest([](void const* panel) { return static_cast<Panel const*>(panel)->isAlive(); })
        .addProperty("rows", &Panel::rows)
        .addMethod("find", &Panel::find, {"property"});
}

}  // namespace nxhost
