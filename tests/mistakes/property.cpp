// says: no item shape of this type: include plst/convert.h or plst/containers.h
#include "support/properties/Prop.h"

struct Stroke {
    double pressure;
};
Stroke read(nxSupport::Prop<Stroke> const& property) { return property.get(); }
