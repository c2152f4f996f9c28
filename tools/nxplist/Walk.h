// Visits the children of containers one by one, without recursion.
#pragma once

#include <string>

#include "plst/Array.h"
#include "plst/Dictionary.h"
#include "plst/Path.h"

namespace nxplist {

inline bool isContainer(nxPLST::Item const* item) {
    return item && (item->type() == nxPLST::ArrayType || item->type() == nxPLST::DictionaryType);
}

/// An iterator over the children of one container.
class Children {
public:
    explicit Children(nxPLST::Item const& container) : container_(&container) {
        if (auto const* entries = dictionary()) entry_ = entries->begin();
    }

    [[nodiscard]] bool done() const {
        return dictionary() ? entry_ == dictionary()->end() : index_ == elements().size();
    }
    [[nodiscard]] nxPLST::Item const* item() const {
        return dictionary() ? entry_->second.get() : elements()[index_].get();
    }
    /// The last step of the path to the current child.
    [[nodiscard]] std::string step() const {
        return dictionary() ? nxPLST::keyText(key().view()) : nxPLST::indexText(static_cast<long>(index_));
    }
    /// Requires: the container is a dictionary.
    [[nodiscard]] urString::CString const& key() const { return entry_->first; }
    void next() {
        if (dictionary()) {
            ++entry_;
        } else {
            ++index_;
        }
    }

    [[nodiscard]] nxPLST::Item const& container() const { return *container_; }

private:
    [[nodiscard]] nxPLST::Dictionary::Map const* dictionary() const {
        if (container_->type() != nxPLST::DictionaryType) return nullptr;
        return &static_cast<nxPLST::Dictionary const*>(container_)->dictionary();
    }
    [[nodiscard]] ur::vector<ur::Reference<nxPLST::Item>> const& elements() const {
        return static_cast<nxPLST::Array const*>(container_)->array();
    }

    nxPLST::Item const* container_;
    std::size_t index_ = 0;
    nxPLST::Dictionary::Map::const_iterator entry_;
};

}  // namespace nxplist
