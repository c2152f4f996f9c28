// Checks the shape of an item before it is converted.
#pragma once

#include "plst/casts.h"

namespace nxPLST {

/// Checks whether an item has a given shape. Returns false if not or, in throw mode, throws `false`.
///
/// Keeps each successful down-cast, so that repeated checks need no cast and derived readers can continue from it. A
/// copy shares the item and has the same mode. One thread at a time.
class NX_API Parser {
public:
    /// Without an item; not in throw mode.
    Parser() = default;
    /// `examined` may be null: then every check fails.
    Parser(ur::Reference<Item const> examined, bool throws);
    Parser(Parser const& other);
    Parser& operator=(Parser const& other);
    virtual ~Parser();

    /// From here on a failed check throws the `bool` false instead of returning it.
    void setThrowMode() noexcept { throwMode = true; }

    [[nodiscard]] bool null() const noexcept { return item.null(); }

    bool parseBool();
    bool parseDouble();
    bool parseString();
    bool parseArray();
    bool parseDictionary();

    /// Whether the item is an array of exactly `n` numbers. An element of another kind returns false without throwing,
    /// even in throw mode.
    bool parseNumericArray(int n);
    /// The same for any number of elements, including none.
    bool parseNumericArray();

protected:
    ur::Reference<Item const> item;
    ur::Reference<Bool const> boolItem;
    ur::Reference<Double const> doubleItem;
    ur::Reference<String const> stringItem;
    ur::Reference<Array const> arrayItem;
    ur::Reference<Dictionary const> dictionaryItem;
    bool throwMode = false;

private:
    [[nodiscard]] bool check(bool ok) const;
    bool elementsAreNumbers();
};

}  // namespace nxPLST
