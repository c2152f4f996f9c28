// What has changed since the last autosave.
#pragma once

#include <set>
#include <unordered_map>
#include <unordered_set>

#include "support/documents/Document.h"
#include "support/documents/impl/ChangeLog.h"
#include "support/documents/impl/ObjectWriter.h"

namespace nxSupport::impl {

/// Collects changes of a document and makes records of them.
///
/// The file knows some objects: those that earlier records hold. Of these, changes are collected one by one; other
/// objects are written whole when an object that the file knows gets them as children. Objects that left the tree stay
/// known, so that moving and undoing cost little. Changes of the lists of different parents do not depend on each
/// other, so that their order does not matter.
class ChangeCollector final : public ChangeLog {
public:
    explicit ChangeCollector(Document& document) : document_(&document) {}

    [[nodiscard]] Document* document() const noexcept { return document_; }
    /// Whether the next record must be the whole document.
    [[nodiscard]] bool needsAll() const noexcept { return needsAll_; }
    [[nodiscard]] bool isEmpty() const noexcept { return values_.empty() && lists_.empty(); }

    /// The document in the form of a file. Nothing is collected after that.
    [[nodiscard]] ur::Reference<nxPLST::Dictionary> takeAll();
    /// What was collected. Nothing is after that.
    [[nodiscard]] ur::Reference<nxPLST::Dictionary> takeChanges();

    void valueChanged(Object& object, urString::CString const& name) noexcept override;
    void inserted(Object& parent, std::size_t index, Object& child) noexcept override;
    void removed(Object& parent, std::size_t index) noexcept override;
    void moved(Object& parent, std::size_t from, std::size_t to) noexcept override;
    void forgetAll() noexcept override;
    void documentGone() noexcept override { document_ = nullptr; }

private:
    struct List {
        urOS::Uuid parent;
        int kind;
        std::size_t index;
        std::size_t to;
        urOS::Uuid child;
    };

    template <class Collect>
    void collect(Object const& known, Collect collect) noexcept;
    [[nodiscard]] Object const* inMemory(urOS::Uuid const& id) const noexcept;
    [[nodiscard]] ur::Reference<nxPLST::Array> newObjects();
    [[nodiscard]] ur::Reference<nxPLST::Array> listItems() const;
    void addValues(nxPLST::Dictionary& record) const;

    Document* document_;
    std::unique_ptr<ObjectWriter> writer_;  ///< of the present file
    std::unordered_set<urOS::Uuid, urOS::UuidHash> known_;
    std::unordered_map<urOS::Uuid, std::set<urString::CString>, urOS::UuidHash> values_;
    ur::vector<List> lists_;
    bool needsAll_ = true;
};

}  // namespace nxSupport::impl
