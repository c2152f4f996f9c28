// says: no item shape of this type: include plst/convert.h or plst/containers.h
#include "plst/make.h"

struct Stroke {
    double pressure;
};
Stroke first(ur::Reference<nxPLST::Dictionary> const& brush) { return nxPLST::get<Stroke>(brush, "stroke"); }
