// The properties that several objects have in common.
#pragma once

#include <initializer_list>
#include <span>
#include <unordered_map>

#include "support/documents/Document.h"

namespace nxSupport {

/// A row for each property that all of some objects have: what a panel shows of a selection.
///
/// Setting the property of a row sets the value in all objects as one step of the history, a drag from `ModifyStart` to
/// `ModifyEnd` as one; a read-only one takes back what it is set to. Rows follow all changes, undo and redo included.
/// Holds the objects; the rows end with it. Main thread only; a listener may destroy it.
class NX_API Panel {
public:
    /// Requires: the objects are of one document, which outlives the panel.
    explicit Panel(std::span<Object* const> objects);
    Panel(std::initializer_list<Object*> objects) : Panel(std::span(objects.begin(), objects.size())) {}
    Panel(Panel const&) = delete;
    Panel& operator=(Panel const&) = delete;
    ~Panel();

    struct Row {
        PropertyDescription const& description;  ///< that of the first object
        /// Untransacted. Null while the objects have different values.
        ur::Reference<Property> property;
        ur::Reference<impl::PropertyBinding> binding;  ///< what keeps the two equal

        NX_API Row(PropertyDescription const& description, ur::Reference<impl::PropertyBinding> binding);
        NX_API Row(Row const& other);
        NX_API ~Row();
        /// Whether the values of the objects differ.
        [[nodiscard]] NX_API bool isMixed() const noexcept;
    };

    /// In the order in which the class of the first object describes them, without hidden ones.
    [[nodiscard]] ur::vector<Row> const& rows() const noexcept { return rows_; }
    /// Null when there is no such row.
    [[nodiscard]] Row const* find(urString::CString const& property) const noexcept;

private:
    void valueChanged(Object& object, urString::CString const& name);

    ur::vector<ur::Reference<Object>> objects_;
    std::unordered_map<Object const*, std::size_t> indexes_;
    ur::vector<Row> rows_;
    urRTB::ScopedConnection following_;
};

/// The panel of some objects of one document.
[[nodiscard]] inline Panel panelOf(std::span<Object* const> objects) { return Panel(objects); }
[[nodiscard]] inline Panel panelOf(std::initializer_list<Object*> objects) { return Panel(objects); }

}  // namespace nxSupport
