#include "foundation/nxTXN/ObjectList.h"
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/Serializer.h"
#include "foundation/nxTXN/Transaction.h"

struct Stroke : ur::ReferenceCount {
    double pressure;
};
struct Layer {
    Stroke stroke;
};
void listMembers(Layer& layer, auto&& visit) { visit("stroke", layer.stroke); }
extern nxTXN::Manager& manager;
extern nxTXN::Serializer& serializer;

// says: what nxTXN::edit runs is called without arguments
void move() {
    nxTXN::edit(manager, "Move", [](int) {});
}

// says: the objects of an nxTXN::ObjectList derive from nxTXN::RefCountedObject
nxTXN::ObjectList<Stroke> const strokes(manager);

// says: no nxTXN::write(Writer&, T const&) for a field of this type
void transact(Stroke& stroke) { serializer.field(stroke); }

// says: for a field of this type: include foundation/nxTXN/fields.h
#include "foundation/nxTXN/fields.h"
void transact(Layer& layer) { serializer.field(layer); }

// says: for a field of this type: include foundation/nxTXN/fields.h
#include "foundation/nxTXN/fields.h"
void transact(std::vector<Stroke>& strokes) { serializer.field(strokes); }
