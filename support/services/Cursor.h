// A request to show a mouse cursor.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/urImage/Image.h"
#include "foundation/urLinear/Point.h"
#include "foundation/urString/CString.h"

namespace nxSupport {

class CursorSlot;
namespace impl {
struct SlotLink;
}

/// Asks a slot to show a cursor for as long as this lives: by name, or by an image with a hot spot.
///
/// Held by reference by the code that wants it shown. It may outlive its slot and then does nothing. A copy has the
/// same client, name, image and slot, but is no request. Main thread only.
class NX_API Cursor : public ur::ReferenceCount {
public:
    /// Adds itself to `slot`, without an image and with the hot spot (0, 0). `client` only tells requests apart.
    Cursor(void const* client, urString::CString const& name, CursorSlot* slot);
    Cursor(void const* client, urString::CString const& name, CursorSlot* slot, ur::Reference<urImage::Image> image,
           urLinear::Point2 const& hotspot);
    Cursor(Cursor const& other);
    Cursor& operator=(Cursor const&) = delete;

    /// What the slot's owner maps to a cursor of the system when there is no image.
    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }
    /// Null when there is none.
    [[nodiscard]] ur::Reference<urImage::Image> image() const noexcept { return image_; }
    /// In pixels of the image.
    [[nodiscard]] urLinear::Point2 const& hotspot() const noexcept { return hotspot_; }
    /// Changes what is shown, not who has precedence.
    void setImage(ur::Reference<urImage::Image> image, urLinear::Point2 const& hotspot);

protected:
    /// Takes the request back. What a listener throws is printed on the application output.
    ~Cursor() override;

private:
    friend class CursorSlot;

    [[nodiscard]] CursorSlot* slot() const noexcept;

    void const* client_;
    urString::CString name_;
    ur::Reference<urImage::Image> image_;
    urLinear::Point2 hotspot_;
    ur::Reference<impl::SlotLink> link_;
};

}  // namespace nxSupport
