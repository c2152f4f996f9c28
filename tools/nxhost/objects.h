// The objects of the document, as scripts use them.
#pragma once

#include "foundation/nxRFL/Database.h"

namespace nxhost {

class Document;

/// Registers the class of objects. Names that are no members of it are properties of the object.
void exposeObjects(nxRFL::Database& database, Document& document);

}  // namespace nxhost
