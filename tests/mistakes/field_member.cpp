// says: for a field of this type: include foundation/nxTXN/fields.h
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/Serializer.h"
#include "foundation/nxTXN/fields.h"

struct Stroke {
    double pressure;
};
struct Layer {
    Stroke stroke;
};
template <class Visit>
void listMembers(Layer& layer, Visit&& visit) {
    visit("stroke", layer.stroke);
}
class Canvas : public nxTXN::RefCountedObject {
    void onTransact(nxTXN::Serializer& serializer) override { serializer.field(layer_); }
    Layer layer_;
};
