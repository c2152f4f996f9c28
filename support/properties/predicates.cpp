// Asking for shapes through the item reader.
#include "support/properties/predicates.h"

#include "plst/Parser.h"

namespace nxSupport {
namespace {

/// Reads the value of a property. A failed check is an answer here, not an error.
class Parser : public nxPLST::Parser {
public:
    explicit Parser(Property const* property) : nxPLST::Parser(property ? property->value() : nullptr, false) {}
};

bool isBounded(Property const* property) { return Parser(property).parseNumericArray(3); }

}  // namespace

bool isDouble(ur::Reference<Property const> property) { return Parser(property.get()).parseDouble(); }
bool isBoundedDouble(ur::Reference<Property const> property) { return isBounded(property.get()); }
bool isBoundedInt(ur::Reference<Property const> property) { return isBounded(property.get()); }

}  // namespace nxSupport
