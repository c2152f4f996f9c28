// says: no conversion of this type to an item: include plst/convert.h or plst/containers.h
#include "plst/make.h"

struct Stroke {
    double pressure;
};
auto const brush = nxPLST::dictionary({{"size", 1}, {"strokes", std::vector<Stroke>(3)}});
