// What several objects have in common, as scripts see it.
#pragma once

#include "foundation/nxRFL/Database.h"
#include "support/documents/Panel.h"
#include "tools/nxhost/PropertyValue.h"
#include "tools/nxhost/clipboard.h"

namespace nxhost {

/// An `nxSupport::Panel` that belongs to scripts, which hold it or its rows. The document outlives it.
class Panel final : public ur::ReferenceCount {
public:
    /// Handed out to scripts anew each time.
    class Row final : public ur::ReferenceCount {
    public:
        Row(Panel& panel, nxSupport::Panel::Row const& row) : panel_(&panel), row_(row) {}

        [[nodiscard]] nxSupport::PropertyDescription const& description() const noexcept { return row_.description; }
        [[nodiscard]] bool isMixed() const noexcept { return row_.isMixed(); }
        /// Null if it is mixed.
        [[nodiscard]] PropertyValue value() const;
        /// Sets the value in all objects as one step, or raises why one of them refuses it.
        void setValue(PropertyValue const& value);
        [[nodiscard]] bool isAlive() const noexcept { return panel_->isAlive(); }

    private:
        ur::Reference<Panel> panel_;
        nxSupport::Panel::Row const& row_;
    };

    Panel(Document& document, Objects objects);

    [[nodiscard]] ur::vector<ur::Reference<Row>> rows();
    /// Null when there is no such row.
    [[nodiscard]] ur::Reference<Row> find(urString::CString const& property);
    /// False once the document was replaced by another.
    [[nodiscard]] bool isAlive() const noexcept { return objects_.empty() || objects_.front()->document(); }

private:
    Document& document_;
    Objects const objects_;
    ur::Charge charge_;
    nxSupport::Panel panel_;
};

/// Registers the classes of panels and their rows.
void exposePanels(nxRFL::Database& database);

}  // namespace nxhost
