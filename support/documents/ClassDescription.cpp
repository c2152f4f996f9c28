// Compares values with the description of their property.
#include "support/documents/ClassDescription.h"

#include <algorithm>
#include <cmath>

#include "foundation/urOS/Uuid.h"
#include "plst/visit.h"

namespace nxSupport {

using nxPLST::Array;
using nxPLST::Dictionary;
using nxPLST::Double;
using nxPLST::Item;
using nxPLST::String;
using urString::CString;
using ItemReference = PropertyDescription::ItemReference;

namespace {

char const* nameOf(nxPLST::Type type) {
    switch (type) {
        case nxPLST::BoolType: return "a boolean";
        case nxPLST::DoubleType: return "a number";
        case nxPLST::StringType: return "a text";
        case nxPLST::ArrayType: return "an array";
        case nxPLST::DictionaryType: return "a dictionary";
    }
    return "of an unknown kind";
}

bool isEmptyContainer(Item const& item) {
    return nxPLST::visit(
        item, [](Array const& array) { return array.empty(); },
        [](Dictionary const& dictionary) { return dictionary.empty(); }, [](Item const&) { return false; });
}

CString faultOfKind(Item const& item, Item const& example) {
    if (item.type() != example.type())
        return CString("is ").append(nameOf(item.type())).append(", expected ").append(nameOf(example.type()));
    if (isEmptyContainer(example) || item.congruent(example)) return {};
    return CString("is ").append(nameOf(item.type())).append(" of another structure than the default");
}

/// Calls `visit` with the number, or with each number of the array.
template <class Visit>
void forEachNumber(Item const& item, Visit visit) {
    nxPLST::visit(
        item, [&](Double const& number) { visit(number.value()); },
        [&](Array const& array) {
            for (auto const& element : array.array()) {
                if (auto const number = nxPLST::asDouble(element)) visit(number->value());
            }
        },
        [](Item const&) {});
}

CString faultOfRange(Item const& item, PropertyDescription const& description) {
    CString fault;
    forEachNumber(item, [&](double number) {
        if (std::isnan(number)) fault = "is not a number";
        if (description.minimum && number < *description.minimum)
            fault = CString::format("is below %.15g", *description.minimum);
        if (description.maximum && number > *description.maximum)
            fault = CString::format("is above %.15g", *description.maximum);
    });
    return fault;
}

bool isIdentity(Item const& item) {
    CString const& text = static_cast<String const&>(item).value();
    return text.empty() || urOS::Uuid().parse(text);
}

}  // namespace

CString PropertyDescription::faultOf(ItemReference const& item) const {
    if (!item) return "is nothing";
    if (value.item()) {
        if (CString fault = faultOfKind(*item, *value.item()); !fault.empty()) return fault;
    }
    if (reference && !isIdentity(*item)) return "is no identity of an object";
    if (minimum || maximum) {
        if (CString fault = faultOfRange(*item, *this); !fault.empty()) return fault;
    }
    auto const isItem = [&](nxPLST::Value const& choice) { return nxPLST::equal(choice.item(), item); };
    if (!choices.empty() && std::ranges::none_of(choices, isItem)) return "is none of the choices";
    return {};
}

ItemReference PropertyDescription::nearest(ItemReference const& item) const {
    if (faultOf(item).empty()) return item;
    if (!item || !(minimum || maximum)) return nullptr;
    auto const bring = [&](Item& number) {
        auto& moved = static_cast<Double&>(number);
        if (minimum && moved.value() < *minimum) moved.set(*minimum);
        if (maximum && moved.value() > *maximum) moved.set(*maximum);
    };
    ur::Reference<Item> const moved = item->clone();
    if (moved->type() == nxPLST::DoubleType) bring(*moved);
    if (moved->type() == nxPLST::ArrayType) {
        for (auto const& element : static_cast<Array&>(*moved).array()) {
            if (element && element->type() == nxPLST::DoubleType) bring(*element);
        }
    }
    return faultOf(moved).empty() ? ItemReference(moved) : nullptr;
}

}  // namespace nxSupport
