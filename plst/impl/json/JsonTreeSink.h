// Builds items from scanned values.
#pragma once

#include <cmath>
#include <span>

#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/impl/ItemSource.h"
#include "plst/impl/ScratchStack.h"
#include "plst/impl/json/FastJsonScan.h"
#include "plst/impl/json/KeyOrders.h"

namespace nxPLST::impl {

/// Builds the tree of one text. Children wait on a stack until their container closes and takes them together.
class JsonTreeSink {
public:
    /// The tree, after the scan has ended.
    [[nodiscard]] ur::Reference<Item> takeRoot() {
        return !root_ && !elements_.empty() ? std::move(elements_.top()) : std::move(root_);
    }
    /// Whether the tree is complete: no null or repeated key was dropped, and no number that may have been whole was
    /// rounded.
    [[nodiscard]] bool lostNothing() const noexcept { return lostNothing_; }

    [[nodiscard]] bool isOpen() const noexcept { return !frames_.empty(); }
    [[nodiscard]] Inside current() noexcept { return frames_.top().inside; }

    template <Inside inside>
    void null() {
        lostNothing_ = false;
        if constexpr (inside == Inside::dictionary) members_.pop();
    }
    template <Inside inside>
    void boolean(bool value) {
        add<inside>(items_.make<Bool>(value));
    }
    template <Inside inside>
    void number(double value) {
        constexpr double exactWholes = 0x1p53;  // all whole numbers up to this are doubles
        if (std::fabs(value) >= exactWholes) [[unlikely]]
            lostNothing_ = false;
        add<inside>(items_.make<Double>(value));
    }
    template <Inside inside>
    void text(ScannedText value) {
        add<inside>(items_.make<String>(value.copy()));
    }
    void key(ScannedText name) { members_.push(name); }
    void open(Inside inside) {
        frames_.push(inside == Inside::dictionary ? members_.size() : elements_.size(), inside);
    }
    void close();

private:
    struct Member {
        explicit Member(ScannedText name) : key(name.copy()) {}

        urString::CString key;
        ur::Reference<Item> value;
    };
    /// An open container: the index of its first child in `elements_` or `members_`.
    struct Frame {
        std::size_t first;
        Inside inside;
    };

    template <Inside inside>
    void add(ur::Reference<Item> item) {
        if constexpr (inside == Inside::dictionary) {
            members_.top().value.swap(item);
        } else {
            elements_.push(std::move(item));
        }
    }
    ur::Reference<Item> takeArray(std::size_t first);
    ur::Reference<Item> takeDictionary(std::size_t first);
    void fill(Dictionary::Map& map, std::span<Member> members);
    void fillSlowly(Dictionary::Map& map, std::span<Member> members);

    ItemSource items_;
    ScratchStack<Frame> frames_;
    ScratchStack<ur::Reference<Item>> elements_;
    ScratchStack<Member> members_;
    KeyOrders orders_;
    bool lostNothing_ = true;
    ur::Reference<Item> root_;
};

}  // namespace nxPLST::impl
