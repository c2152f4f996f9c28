// says: the objects of an nxTXN::ObjectList derive from nxTXN::RefCountedObject
#include "foundation/nxTXN/ObjectList.h"

struct Stroke : ur::ReferenceCount {};
void make(nxTXN::Manager& manager) { nxTXN::ObjectList<Stroke> const strokes(manager); }
