// Requests for mouse cursors.
#include "support/services/Cursor.h"

#include <utility>

#include "foundation/urOS/reportException.h"
#include "support/services/CursorSlot.h"
#include "support/services/impl/SlotLink.h"

namespace nxSupport {

Cursor::Cursor(void const* client, urString::CString const& name, CursorSlot* slot)
    : Cursor(client, name, slot, {}, {}) {}

Cursor::Cursor(void const* client, urString::CString const& name, CursorSlot* slot, ur::Reference<urImage::Image> image,
               urLinear::Point2 const& hotspot)
    : client_(client), name_(name), image_(std::move(image)), hotspot_(hotspot), link_(slot->link_) {
    ref();  // so that a listener that holds and releases the cursor does not destroy it
    try {
        slot->add(client, *this);
    } catch (...) {
        if (link_->slot) link_->slot->forget(*this);
        throw;
    }
    unrefInConstructor();
}

Cursor::Cursor(Cursor const& other)
    : ReferenceCount(other),
      client_(other.client_),
      name_(other.name_),
      image_(other.image_),
      hotspot_(other.hotspot_),
      link_(other.link_) {}

Cursor::~Cursor() {
    if (!slot()) return;
    ref();  // as in the constructor
    try {
        slot()->removeDying(client_, *this);
    } catch (...) {
        urOS::reportException("nxSupport::Cursor", std::current_exception());
    }
}

CursorSlot* Cursor::slot() const noexcept { return link_->slot; }

void Cursor::setImage(ur::Reference<urImage::Image> image, urLinear::Point2 const& hotspot) {
    hotspot_ = hotspot;
    image_ = std::move(image);
    if (slot()) slot()->update(client_, *this);
}

}  // namespace nxSupport
