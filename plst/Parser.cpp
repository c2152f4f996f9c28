// Checks the shapes of items.
#include "plst/Parser.h"

#include <algorithm>
#include <utility>

namespace nxPLST {

Parser::Parser(ur::Reference<Item const> examined, bool throws) : item(std::move(examined)), throwMode(throws) {}
Parser::Parser(Parser const& other) = default;
Parser& Parser::operator=(Parser const& other) = default;
Parser::~Parser() = default;

bool Parser::check(bool ok) const {
    if (!ok && throwMode) throw false;
    return ok;
}

bool Parser::parseBool() {
    if (!boolItem) boolItem = asBool(item);
    return check(!boolItem.null());
}

bool Parser::parseDouble() {
    if (!doubleItem) doubleItem = asDouble(item);
    return check(!doubleItem.null());
}

bool Parser::parseString() {
    if (!stringItem) stringItem = asString(item);
    return check(!stringItem.null());
}

bool Parser::parseArray() {
    if (!arrayItem) arrayItem = asArray(item);
    return check(!arrayItem.null());
}

bool Parser::parseDictionary() {
    if (!dictionaryItem) dictionaryItem = asDictionary(item);
    return check(!dictionaryItem.null());
}

bool Parser::parseNumericArray(int n) {
    if (!parseArray() || !check(arrayItem->size() == n)) return false;
    return elementsAreNumbers();
}

bool Parser::parseNumericArray() { return parseArray() && elementsAreNumbers(); }

bool Parser::elementsAreNumbers() {
    return std::ranges::all_of(arrayItem->array(),
                               [](ur::Reference<Item> const& element) { return !asDouble(element).null(); });
}

}  // namespace nxPLST
