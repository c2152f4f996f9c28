// The guard in front of the reading conversions: is the item of the shape that they trust?
#pragma once

#include "plst/casts.h"

namespace nxPLST {

/// Answers kind by kind whether an item has a shape, by result or, in throw mode, by throwing `false`.
///
/// Each successful down-cast is kept, so that asking again costs no cast and a derived reader can go on from it.
/// A copy shares the item and has the same mode. One thread at a time.
class NX_API Parser {
public:
    /// No item; not in throw mode.
    Parser() = default;
    /// `examined` may be null: then every question is answered with false.
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

    /// Whether the item is an array of exactly `n` numbers. An element of another kind gives false without
    /// throwing, in throw mode as well.
    bool parseNumericArray(int n);
    /// The same for any number of elements, none included.
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
