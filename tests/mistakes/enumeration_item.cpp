// says: no names of this enumeration's values: include plst/containers.h and add namesOf
#include "plst/make.h"

enum class Wood { oak, ash };
auto const item = nxPLST::itemOf(Wood::oak);
