// Converts items to values.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "plst/convert.h"

namespace nxPLST {
namespace {

using ItemIn = ur::Reference<Item const>;

/// `value` without its fraction, clamped to the range of an int; empty for NaN.
std::optional<int> truncated(double value) {
    using Limits = std::numeric_limits<int>;
    if (std::isnan(value)) return std::nullopt;
    return static_cast<int>(std::clamp(value, double(Limits::min()), double(Limits::max())));
}

/// The low eight bits of `value` without its fraction; empty when it is not finite.
std::optional<unsigned char> lowByte(double value) {
    auto const low = truncated(std::fmod(value, 256.0));
    return low ? std::optional(static_cast<unsigned char>(*low)) : std::nullopt;
}

std::optional<double> number(Item const* item) {
    if (!item || item->type() != DoubleType) return std::nullopt;
    return static_cast<Double const*>(item)->value();
}

/// The first N numbers of an array that starts with N numbers.
template <std::size_t N>
std::optional<std::array<double, N>> numbers(Item const* item) {
    if (!item || item->type() != ArrayType) return std::nullopt;
    auto const& elements = static_cast<Array const*>(item)->array();
    if (elements.size() < N) return std::nullopt;
    std::array<double, N> result;
    for (std::size_t i = 0; i < N; ++i) {
        auto const value = number(elements[i].get());
        if (!value) return std::nullopt;
        result[i] = *value;
    }
    return result;
}

urString::CString const* text(Item const* item) {
    return item && item->type() == StringType ? &static_cast<String const*>(item)->value() : nullptr;
}

template <class Vector>
void readXYZ(Vector& out, ItemIn const& item) {
    if (auto const xyz = numbers<3>(item.get())) out = Vector((*xyz)[0], (*xyz)[1], (*xyz)[2]);
}

void readFlat(urLinear::AffineMatrix& out, Item const& item) {
    if (auto const coefficients = numbers<12>(&item)) {
        for (int i = 0; i < 12; ++i) out.coefficient(i) = (*coefficients)[i];
    }
}

void readRows(urLinear::AffineMatrix& out, Array const& rows) {
    urLinear::AffineMatrix read;
    for (int m = 0; m < 3; ++m) {
        auto const row = numbers<4>(rows.array()[m].get());
        if (!row) return;
        for (int k = 0; k < 4; ++k) read.coefficient(3 * k + m) = (*row)[k];
    }
    out = read;
}

/// A deep copy if the item has the wanted kind; otherwise copies nothing.
template <class Kind, ur::Reference<Kind> (*as)(ur::Reference<Item>), ur::Reference<Kind const> (*asConst)(ItemIn)>
ur::Reference<Kind> privateCopy(ItemIn const& item) {
    return asConst(item) ? as(item->clone()) : nullptr;
}

}  // namespace

void convert(int& out, ItemIn item) {
    if (auto const value = number(item.get())) out = truncated(*value).value_or(out);
}

void convert(float& out, ItemIn item) {
    if (auto const value = number(item.get())) out = static_cast<float>(*value);
}

void convert(double& out, ItemIn item) { out = number(item.get()).value_or(out); }

void convert(bool& out, ItemIn item) {
    if (auto const truth = asBool(item)) {
        out = truth->value();
    } else if (auto const value = number(item.get())) {
        out = *value != 0.0;
    }
}

void convert(std::string& out, ItemIn item) {
    if (auto const* const value = text(item.get())) out = value->view();
}
void convert(urString::CString& out, ItemIn item) {
    if (auto const* value = text(item.get())) out = *value;
}

void convert(urString::IString& out, ItemIn item) {
    if (auto const* value = text(item.get())) out.assign(value->view(), urString::Encoding::utf8);
}

void convert(urLinear::Point2& out, ItemIn item) {
    if (auto const xy = numbers<2>(item.get())) out = urLinear::Point2((*xy)[0], (*xy)[1]);
}

void convert(urLinear::Point& out, ItemIn item) { readXYZ(out, item); }
void convert(urLinear::Vector& out, ItemIn item) { readXYZ(out, item); }
void convert(urLinear::Normal& out, ItemIn item) { readXYZ(out, item); }

void convert(urLinear::Quaternion& out, ItemIn item) {
    if (auto const four = numbers<4>(item.get())) {
        for (int i = 0; i < 4; ++i) out[i] = (*four)[i];
    }
}

void convert(urLinear::AffineMatrix& out, ItemIn item) {
    auto const array = asArray(item);
    if (!array) return;
    if (array->size() == 12) readFlat(out, *array);
    if (array->size() == 3 || array->size() == 4) readRows(out, *array);
}

void convert(urUtil::Color& out, ItemIn item) {
    if (auto const channels = numbers<4>(item.get())) {
        for (int i = 0; i < 4; ++i) out[i] = static_cast<float>((*channels)[i]);
    }
}

void convert(urUtil::Color8& out, ItemIn item) {
    auto const channels = numbers<4>(item.get());
    if (!channels) return;
    urUtil::Color8 read;
    for (int i = 0; i < 4; ++i) {
        auto const channel = lowByte((*channels)[i]);
        if (!channel) return;
        read[i] = *channel;
    }
    out = read;
}

void convert(nxSupport::BoundedDouble& out, ItemIn item) {
    if (auto const three = numbers<3>(item.get())) out = {(*three)[0], (*three)[1], (*three)[2]};
}

void convert(nxSupport::BoundedInt& out, ItemIn item) {
    auto const three = numbers<3>(item.get());
    if (!three) return;
    auto const value = truncated((*three)[0]);
    auto const minimum = truncated((*three)[1]);
    auto const maximum = truncated((*three)[2]);
    if (value && minimum && maximum) out = {*value, *minimum, *maximum};
}

void convert(ur::Reference<Item const>& out, ItemIn item) { out = std::move(item); }
void convert(ur::Reference<Array const>& out, ItemIn item) { out = asArray(std::move(item)); }
void convert(ur::Reference<Bool const>& out, ItemIn item) { out = asBool(std::move(item)); }
void convert(ur::Reference<Double const>& out, ItemIn item) { out = asDouble(std::move(item)); }
void convert(ur::Reference<String const>& out, ItemIn item) { out = asString(std::move(item)); }

void convert(ur::Reference<Array>& out, ItemIn item) { out = privateCopy<Array, asArray, asArray>(item); }
void convert(ur::Reference<Bool>& out, ItemIn item) { out = privateCopy<Bool, asBool, asBool>(item); }
void convert(ur::Reference<Double>& out, ItemIn item) { out = privateCopy<Double, asDouble, asDouble>(item); }
void convert(ur::Reference<String>& out, ItemIn item) { out = privateCopy<String, asString, asString>(item); }
void convert(ur::Reference<Dictionary>& out, ItemIn item) {
    out = privateCopy<Dictionary, asDictionary, asDictionary>(item);
}
void convert(ur::Reference<Dictionary const>& out, ItemIn item) {
    out = privateCopy<Dictionary, asDictionary, asDictionary>(item);
}

}  // namespace nxPLST
