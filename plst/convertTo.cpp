// Converts values to items.
#include <array>
#include <concepts>
#include <span>
#include <utility>

#include "plst/convert.h"

namespace nxPLST {
namespace {

void store(ur::Reference<Item>& out, std::span<double const> numbers) {
    auto array = ur::make<Array>();
    array->array().reserve(numbers.size());
    for (double number : numbers) array->insert(ur::make<Double>(number));
    out = std::move(array);
}

void store(ur::Reference<Item>& out, std::same_as<double> auto... numbers) { store(out, std::array{numbers...}); }

}  // namespace

void convert(ur::Reference<Item>& out, int value) { convert(out, static_cast<double>(value)); }
void convert(ur::Reference<Item>& out, float value) { convert(out, static_cast<double>(value)); }
void convert(ur::Reference<Item>& out, double value) { out = ur::make<Double>(value); }
void convert(ur::Reference<Item>& out, bool value) { out = ur::make<Bool>(value); }
void convert(ur::Reference<Item>& out, char const* value) { out = ur::make<String>(urString::CString(value)); }
void convert(ur::Reference<Item>& out, urString::CString const& value) { out = ur::make<String>(value); }
void convert(ur::Reference<Item>& out, std::string_view value) { out = ur::make<String>(value); }
void convert(ur::Reference<Item>& out, urString::IString const& value) { out = ur::make<String>(value.asUTF8()); }

void convert(ur::Reference<Item>& out, urLinear::Point2 const& value) { store(out, value.x, value.y); }
void convert(ur::Reference<Item>& out, urLinear::Point const& value) { store(out, value.x, value.y, value.z); }
void convert(ur::Reference<Item>& out, urLinear::Vector const& value) { store(out, value.x, value.y, value.z); }
void convert(ur::Reference<Item>& out, urLinear::Normal const& value) { store(out, value.x(), value.y(), value.z()); }
void convert(ur::Reference<Item>& out, urLinear::Quaternion const& value) {
    store(out, value.x, value.y, value.z, value.w);
}
void convert(ur::Reference<Item>& out, urLinear::AffineMatrix const& value) {
    store(out, std::span(value.data(), urLinear::AffineMatrix::size));
}

void convert(ur::Reference<Item>& out, urUtil::Color const& value) {
    store(out, double(value.r), double(value.g), double(value.b), double(value.a));
}
void convert(ur::Reference<Item>& out, urUtil::Color8 const& value) {
    store(out, double(value.r), double(value.g), double(value.b), double(value.a));
}
void convert(ur::Reference<Item>& out, nxSupport::BoundedDouble const& value) {
    store(out, value.value(), value.minValue(), value.maxValue());
}
void convert(ur::Reference<Item>& out, nxSupport::BoundedInt const& value) {
    store(out, double(value.value()), double(value.minValue()), double(value.maxValue()));
}

void convert(ur::Reference<Item>& out, ur::Reference<Item const> value) {
    out = value ? value->clone() : ur::Reference<Item>();
}

}  // namespace nxPLST
