// says: for a field of this type: include foundation/nxTXN/fields.h
#include <vector>
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/Serializer.h"
#include "foundation/nxTXN/fields.h"

struct Stroke {
    double pressure;
};
class Canvas : public nxTXN::RefCountedObject {
    void onTransact(nxTXN::Serializer& serializer) override { serializer.field(strokes_); }
    std::vector<Stroke> strokes_;
};
