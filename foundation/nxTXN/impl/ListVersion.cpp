// Keeps the versions that are held and the paths between them, and no others.
#include "foundation/nxTXN/impl/ListVersion.h"

#include <utility>

#include "foundation/nxTXN/impl/Lifetimes.h"

namespace nxTXN::impl {

ListVersion::ListVersion(ListVersion& parent, ListChange const& change, RefCountedObject& object) noexcept
    : parent_(&parent),
      nextSibling_(std::exchange(parent.firstChild_, this)),
      object_(&object),
      change_(change),
      depth_(parent.depth_ + 1) {
    static_cast<void>(Lifetimes::pin(object));  // a counted object
    Lifetimes::count(object, sizeof(ListVersion));
}

ListVersion::~ListVersion() {
    if (!object_) return;
    Lifetimes::count(*object_, -static_cast<std::ptrdiff_t>(sizeof(ListVersion)));
    Lifetimes::unpin(*object_);
}

// Releasing an object may run hooks that change lists, so the tree is put in order first.
void ListVersion::trim(ListVersion* version) noexcept {
    ListVersion* gone = nullptr;
    while (version && version->holders_ == 0) {
        ListVersion* const trimmed = version;
        if (!version->firstChild_) {
            version = version->parent_;
            if (version) trimmed->leaveParent();
        } else if (!version->parent_ && !version->firstChild_->nextSibling_) {
            version = version->firstChild_;
            version->parent_ = nullptr;
            std::swap(version->object_, trimmed->object_);
        } else {
            break;
        }
        trimmed->parent_ = std::exchange(gone, trimmed);
    }
    while (gone) delete std::exchange(gone, gone->parent_);
}

void ListVersion::leaveParent() noexcept {
    ListVersion** link = &parent_->firstChild_;
    while (*link != this) link = &(*link)->nextSibling_;
    *link = nextSibling_;
}

}  // namespace nxTXN::impl
