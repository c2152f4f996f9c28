// Makes, finds and selects objects, and walks the history.
#include "support/documents/Document.h"

#include <exception>
#include <unordered_set>

#include "support/documents/Autosave.h"
#include "support/documents/impl/ChangeLog.h"

namespace nxSupport {

using nxTXN::TransactionKind;
using urString::CString;

Document::Document(ObjectCatalog const& catalog, CString const& rootClass) : catalog_(catalog) {
    nxTXN::Transaction quiet(history_, {}, TransactionKind::none);
    urOS::Uuid id;
    id.generate();
    index_[id] = nullptr;
    root_ = new Object(*this, catalog.classFor(rootClass, {}), id);
    index_[id] = root_.get();
    quiet.commit();
}

Document::~Document() {
    if (log_) log_->documentGone();
    for (auto const& [id, object] : index_) object->document_ = nullptr;
}

ur::Reference<Object> Document::make(CString const& className) {
    auto objectClass = catalog_.find(className);
    if (!objectClass) return nullptr;
    urOS::Uuid id;
    id.generate();
    Object*& place = index_[id];
    try {
        place = new Object(*this, std::move(objectClass), id);
    } catch (...) {
        index_.erase(id);
        throw;
    }
    return {place};
}

Object* Document::find(urOS::Uuid const& id) const noexcept {
    auto const found = index_.find(id);
    return found != index_.end() && found->second->isInTree() ? found->second : nullptr;
}

void Document::forget(Object& object) noexcept {
    auto const found = index_.find(object.id());
    if (found != index_.end() && found->second == &object) index_.erase(found);
}

ur::vector<CString> Document::steps() const {
    ur::vector<CString> names;
    for (std::size_t i = history_.undoCount(); i-- > 0;) names.push_back(history_.undoName(i));
    for (std::size_t i = 0; i < history_.redoCount(); ++i) names.push_back(history_.redoName(i));
    return names;
}

bool Document::undoTo(std::size_t count) {
    if (count > history_.undoCount() + history_.redoCount()) return false;
    for (auto left = history_.undoCount(); left > count; --left) {
        if (!history_.undo()) return false;
    }
    for (auto done = history_.undoCount(); done < count; ++done) {
        if (!history_.redo()) return false;
    }
    return history_.undoCount() == count;
}

void Document::beginContext(Context const& context) {
    TransactionType const type = context.transactionType();
    if (type == TxnUndecided) return;
    unwinding_.push_back(std::uncaught_exceptions());
    try {
        if (type != TxnRecorded || !context.interactiveMode()) {
            history_.begin(stepName_, static_cast<TransactionKind>(type));
            return;
        }
        if (context.mode() == Context::InteractionStart) history_.endCoalescing();
        history_.beginCoalescing(stepName_, this);
    } catch (...) {
        unwinding_.pop_back();
        throw;
    }
}

void Document::endContext(Context const& context) {
    if (context.transactionType() == TxnUndecided || unwinding_.empty()) return;
    bool const fails = std::uncaught_exceptions() > unwinding_.back();
    unwinding_.pop_back();
    fails ? history_.abort() : history_.commit();
    if (context.mode() == Context::InteractionEnd) history_.endCoalescing();
}

ur::vector<Object*> Document::selection() const {
    ur::vector<Object*> objects;
    for (auto const& id : selection_) {
        if (Object* const object = find(id)) objects.push_back(object);
    }
    return objects;
}

void Document::select(std::span<Object* const> objects) {
    ur::vector<urOS::Uuid> ids;
    std::unordered_set<Object const*> taken;
    for (Object const* const object : objects) {
        if (object && taken.insert(object).second) ids.push_back(object->id());
    }
    selection_.swap(ids);
    selectionChanged_.emit();
}

}  // namespace nxSupport
