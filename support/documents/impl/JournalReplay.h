// The document that the records of an autosave file describe.
#pragma once

#include <unordered_map>

#include "foundation/ur/Sequence.h"
#include "foundation/urOS/Uuid.h"
#include "plst/make.h"

namespace nxSupport::impl {

/// Holds the objects of the records in a table, each with the identities of its children, and applies changes to them.
/// Records may be of any content: what they cannot mean is refused.
class JournalReplay {
public:
    /// Takes the first record. False when it holds no document.
    [[nodiscard]] bool begin(ur::Reference<nxPLST::Item> const& record);
    /// Takes another record. False when its changes do not fit.
    [[nodiscard]] bool apply(ur::Reference<nxPLST::Item> const& record);
    /// The document in the form of a file; null when objects are missing or hold themselves.
    [[nodiscard]] ur::Reference<nxPLST::Dictionary> document() const;

    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }
    /// Of the last record that was taken.
    [[nodiscard]] double time() const noexcept { return time_; }

private:
    struct Entry {
        ur::Reference<nxPLST::Dictionary> item;  ///< without children
        ur::Sequence<urOS::Uuid> children;
    };

    [[nodiscard]] bool enterTree(ur::Reference<nxPLST::Item> const& top);
    [[nodiscard]] Entry* find(urString::CString const& text);
    [[nodiscard]] bool addObjects(nxPLST::Dictionary const& record);
    [[nodiscard]] bool applyValues(nxPLST::Dictionary const& record);
    [[nodiscard]] bool applyLists(nxPLST::Dictionary const& record);
    [[nodiscard]] bool applyList(nxPLST::Array const& change);

    ur::Reference<nxPLST::Dictionary> head_;
    urOS::Uuid root_;
    std::unordered_map<urOS::Uuid, Entry, urOS::UuidHash> objects_;
    urString::CString name_;
    double time_ = 0;
};

}  // namespace nxSupport::impl
