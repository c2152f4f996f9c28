// Checked down-casts of items. None converts: a number is not a truth value here.
#pragma once

#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"

namespace nxPLST {

/// The same item as its own class; null when `item` is null or of another class.
NX_API ur::Reference<Array> asArray(ur::Reference<Item> item);
NX_API ur::Reference<Array const> asArray(ur::Reference<Item const> item);
NX_API ur::Reference<Bool> asBool(ur::Reference<Item> item);
NX_API ur::Reference<Bool const> asBool(ur::Reference<Item const> item);
NX_API ur::Reference<Dictionary> asDictionary(ur::Reference<Item> item);
NX_API ur::Reference<Dictionary const> asDictionary(ur::Reference<Item const> item);
NX_API ur::Reference<Double> asDouble(ur::Reference<Item> item);
NX_API ur::Reference<Double const> asDouble(ur::Reference<Item const> item);
NX_API ur::Reference<String> asString(ur::Reference<Item> item);
NX_API ur::Reference<String const> asString(ur::Reference<Item const> item);

}  // namespace nxPLST
