// Checked down-casts of items.
#include "plst/casts.h"

namespace nxPLST {
namespace {

/// The classes are final, so comparing class identities is equivalent to a dynamic cast and costs less.
template <class To, class From>
ur::Reference<To> cast(ur::Reference<From>& item) {
    if (!item || typeid(*item) != typeid(To)) return nullptr;
    return ur::Reference<To>::adopt(static_cast<To*>(item.release()));
}

}  // namespace

ur::Reference<Array> asArray(ur::Reference<Item> item) { return cast<Array>(item); }
ur::Reference<Array const> asArray(ur::Reference<Item const> item) { return cast<Array const>(item); }
ur::Reference<Bool> asBool(ur::Reference<Item> item) { return cast<Bool>(item); }
ur::Reference<Bool const> asBool(ur::Reference<Item const> item) { return cast<Bool const>(item); }
ur::Reference<Dictionary> asDictionary(ur::Reference<Item> item) { return cast<Dictionary>(item); }
ur::Reference<Dictionary const> asDictionary(ur::Reference<Item const> item) { return cast<Dictionary const>(item); }
ur::Reference<Double> asDouble(ur::Reference<Item> item) { return cast<Double>(item); }
ur::Reference<Double const> asDouble(ur::Reference<Item const> item) { return cast<Double const>(item); }
ur::Reference<String> asString(ur::Reference<Item> item) { return cast<String>(item); }
ur::Reference<String const> asString(ur::Reference<Item const> item) { return cast<String const>(item); }

}  // namespace nxPLST
