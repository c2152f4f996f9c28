// says: no nxTXN::write(Writer&, T const&) for a field of this type
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/Serializer.h"

struct Stroke {
    double pressure;
};
class Canvas : public nxTXN::RefCountedObject {
    void onTransact(nxTXN::Serializer& serializer) override { serializer.field(stroke_); }
    Stroke stroke_;
};
