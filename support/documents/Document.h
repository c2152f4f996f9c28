// A tree of objects with its history.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <unordered_map>
#include <utility>

#include "foundation/nxTXN/Transaction.h"
#include "support/documents/Object.h"
#include "support/documents/ObjectCatalog.h"
#include "support/messaging/Context.h"

namespace nxSupport {

class Autosave;

namespace impl {
class ChangeCollector;
class ChangeLog;
}  // namespace impl

/// What a user works on and saves: objects in a tree, the history of their changes, and what is selected.
///
///     Document document(catalog, "Drawing");
///     document.edit("Add circle", [&] { document.root().append(document.make("Circle")); });
///     document.undo();
///
/// Owns its objects and their history; the catalog outlives it. Finding an object by identity and changing one take the
/// same time in small and large documents. Main thread only; listeners may do anything but destroy the document.
class NX_API Document {
public:
    /// The root has that class. A class that the catalog does not have may hold anything.
    Document(ObjectCatalog const& catalog, urString::CString const& rootClass);
    Document(Document const&) = delete;
    Document& operator=(Document const&) = delete;
    ~Document();

    [[nodiscard]] ObjectCatalog const& catalog() const noexcept { return catalog_; }
    [[nodiscard]] Object& root() const noexcept { return *root_; }
    /// A new object with the default values, in no tree yet. Null when the catalog does not have that class.
    [[nodiscard]] ur::Reference<Object> make(urString::CString const& className);
    /// The object in the tree; null when there is none. One that was removed comes back with undo.
    [[nodiscard]] Object* find(urOS::Uuid const& id) const noexcept;
    /// By path from the root: see `Object::find`.
    [[nodiscard]] Object* find(std::string_view path) const { return root_->find(path); }

    /// The number of its objects in memory, with those in no tree and those that only the history holds.
    [[nodiscard]] std::size_t objectCount() const noexcept { return index_.size(); }

    /// Limits, signals and transactions of the history.
    [[nodiscard]] nxTXN::Manager& history() noexcept { return history_; }
    [[nodiscard]] nxTXN::Manager const& history() const noexcept { return history_; }
    /// Runs `change` as one step of that name. What it throws takes everything back and passes to the caller. False
    /// when nothing is recorded here.
    template <class Change>
    bool edit(urString::CString const& name, Change&& change) {
        return nxTXN::edit(history_, name, std::forward<Change>(change));
    }
    bool undo() { return history_.undo(); }
    bool redo() { return history_.redo(); }
    /// The names of all steps, oldest first; the first `history().undoCount()` of them are done.
    [[nodiscard]] ur::vector<urString::CString> steps() const;
    /// Undoes or redoes until `count` steps are done. False when there are not so many, or when the history is busy or
    /// a listener makes steps.
    bool undoTo(std::size_t count);
    /// Whether the document differs from what was saved or opened last. Undo can make it unmodified again.
    [[nodiscard]] bool isModified() const noexcept { return isRecovered_ || !history_.isClean(); }
    /// Called by saving; a host that saves by itself calls it.
    void setUnmodified() noexcept {
        history_.setClean();
        isRecovered_ = false;
    }

    /// The hooks of the host's domain call these: the changes in a context are recorded as its mode says. Those from an
    /// InteractionStart to its InteractionEnd are one step; an exception that leaves a context takes its changes back.
    void beginContext(Context const& context);
    void endContext(Context const& context);
    /// Names the steps of contexts that begin from now on.
    void setStepName(urString::CString name) { stepName_ = std::move(name); }

    /// The selected objects that are in the tree, in the order of their selection, each once. Not part of the history:
    /// an object that is removed leaves the selection, and is in it again when undo brings it back.
    [[nodiscard]] ur::vector<Object*> selection() const;
    void select(std::span<Object* const> objects);
    void select(std::initializer_list<Object*> objects) { select(std::span(objects.begin(), objects.size())); }

    /// As the signals of `Object`, for all objects, also for those in no tree.
    [[nodiscard]] Object::ChangedSignal& changedSignal() noexcept { return changed_; }
    [[nodiscard]] Object::ChildSignal& insertedSignal() noexcept { return inserted_; }
    [[nodiscard]] Object::ChildSignal& removedSignal() noexcept { return removed_; }
    [[nodiscard]] Object::MovedSignal& movedSignal() noexcept { return moved_; }
    /// The document was opened: all objects are others.
    [[nodiscard]] urRTB::Signal<>& replacedSignal() noexcept { return replaced_; }
    /// Another selection was made. Objects that leave it or come back to it are told of by the signals of children.
    [[nodiscard]] urRTB::Signal<>& selectionSignal() noexcept { return selectionChanged_; }

private:
    friend class Object;
    friend class Autosave;
    friend class impl::ChangeCollector;
    friend class impl::ObjectReader;
    friend NX_API urUtil::Error autosave(Document& document, urString::IString const& folder,
                                         urString::CString const& name);
    friend NX_API urUtil::Error discardAutosave(Document& document);

    using Index = std::unordered_map<urOS::Uuid, Object*, urOS::UuidHash>;

    void forget(Object& object) noexcept;

    ObjectCatalog const& catalog_;
    nxTXN::Manager history_;
    Index index_;  ///< all objects in memory, also those that only the history holds
    ur::Reference<Object> root_;
    ur::vector<urOS::Uuid> selection_;
    bool isRecovered_ = false;        ///< and not saved since
    impl::ChangeLog* log_ = nullptr;  ///< told before the signals; not owned
    std::unique_ptr<Autosave> autosave_;
    urString::CString stepName_;
    ur::vector<int> unwinding_;  ///< for each open context: the number of exceptions when it began
    Object::ChangedSignal changed_;
    Object::ChildSignal inserted_;
    Object::ChildSignal removed_;
    Object::MovedSignal moved_;
    urRTB::Signal<> replaced_;
    urRTB::Signal<> selectionChanged_;
};

}  // namespace nxSupport
