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

/// Requests that a slot shows a cursor, by name or by an image with a hot spot, as long as this object lives.
///
/// Held by reference by the code that wants the cursor shown. It may outlive its slot and then does nothing. A copy has
/// the same client, name, image and slot, but does not request anything. Main thread only.
class NX_API Cursor : public ur::ReferenceCount {
public:
    /// Adds itself to `slot`, without an image and with the hot spot (0, 0). `client` only identifies the request.
    Cursor(void const* client, urString::CString const& name, CursorSlot* slot);
    Cursor(void const* client, urString::CString const& name, CursorSlot* slot, ur::Reference<urImage::Image> image,
           urLinear::Point2 const& hotspot);
    Cursor(Cursor const& other);
    Cursor& operator=(Cursor const&) = delete;

    /// The slot's owner maps the name to a system cursor if there is no image.
    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }
    /// Null if there is none.
    [[nodiscard]] ur::Reference<urImage::Image> image() const noexcept { return image_; }
    /// In pixels of the image.
    [[nodiscard]] urLinear::Point2 const& hotspot() const noexcept { return hotspot_; }
    /// Changes the image and hot spot but not the precedence.
    void setImage(ur::Reference<urImage::Image> image, urLinear::Point2 const& hotspot);

protected:
    /// Removes the request. An exception from a listener is printed on the application output.
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
