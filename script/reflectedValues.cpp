// Reading and writing the forms.
#include "script/reflectedValues.h"

#include "foundation/nxRFL/values.h"

namespace nxRFL {

using urString::CString;

namespace {

/// Calls `component(i)` for each component, which reads or writes one number.
template <int count, class Component>
void readNumbers(Reader& reader, Component component) {
    reader.startArray();
    for (int i = 0; i < count; ++i) component(i);
    reader.endArray();
}

template <int count, class Component>
void writeNumbers(Writer& writer, Component component) {
    writer.startArray(count);
    for (int i = 0; i < count; ++i) write(writer, component(i));
    writer.endArray();
}

template <int count, class Value>
void readComponents(Reader& reader, Value& value) {
    readNumbers<count>(reader, [&](int i) { read(reader, value[i]); });
}

template <int count, class Value>
void writeComponents(Writer& writer, Value const& value) {
    writeNumbers<count>(writer, [&](int i) { return value[i]; });
}

template <class T, int count>
void readNormal(Reader& reader, urLinear::BasicNormal<T, count>& value) {
    urLinear::BasicVector<T, count> direction;
    readComponents<count>(reader, direction);
    value.set(direction);
}

/// Reads a dictionary of up to two entries, in any order.
template <class First, class Second>
void readEntries(Reader& reader, char const* name, char const* firstKey, First& first, char const* secondKey,
                 Second& second) {
    readDictionary(reader, name, 2, [&](CString const& key) {
        if (key == firstKey) {
            read(reader, first);
        } else if (key == secondKey) {
            read(reader, second);
        } else {
            return false;
        }
        return true;
    });
}

template <class First, class Second>
void writeEntries(Writer& writer, char const* firstKey, First const& first, char const* secondKey,
                  Second const& second) {
    writer.startDictionary(2);
    writer.writeText(firstKey);
    write(writer, first);
    writer.writeText(secondKey);
    write(writer, second);
    writer.endDictionary();
}

}  // namespace

void read(Reader& reader, urLinear::Tuple2& value) { readComponents<2>(reader, value); }
void read(Reader& reader, urLinear::Point2& value) { readComponents<2>(reader, value); }
void read(Reader& reader, urLinear::Point2Flt& value) { readComponents<2>(reader, value); }
void read(Reader& reader, urLinear::Vector2& value) { readComponents<2>(reader, value); }
void read(Reader& reader, urLinear::Point& value) { readComponents<3>(reader, value); }
void read(Reader& reader, urLinear::PointFlt& value) { readComponents<3>(reader, value); }
void read(Reader& reader, urLinear::Vector& value) { readComponents<3>(reader, value); }
void read(Reader& reader, urLinear::VectorFlt& value) { readComponents<3>(reader, value); }
void read(Reader& reader, urUtil::HSL& value) { readComponents<3>(reader, value); }
void read(Reader& reader, urUtil::Color& value) { readComponents<4>(reader, value); }
void read(Reader& reader, urLinear::Normal2& value) { readNormal(reader, value); }
void read(Reader& reader, urLinear::Normal& value) { readNormal(reader, value); }
void read(Reader& reader, urLinear::NormalFlt& value) { readNormal(reader, value); }
void read(Reader& reader, urLinear::AffineMatrix2& value) {
    readNumbers<urLinear::AffineMatrix2::size>(reader, [&](int i) { read(reader, value.coefficient(i)); });
}

void write(Writer& writer, urLinear::Tuple2 const& value) { writeComponents<2>(writer, value); }
void write(Writer& writer, urLinear::Point2 const& value) { writeComponents<2>(writer, value); }
void write(Writer& writer, urLinear::Point2Flt const& value) { writeComponents<2>(writer, value); }
void write(Writer& writer, urLinear::Vector2 const& value) { writeComponents<2>(writer, value); }
void write(Writer& writer, urLinear::Point const& value) { writeComponents<3>(writer, value); }
void write(Writer& writer, urLinear::PointFlt const& value) { writeComponents<3>(writer, value); }
void write(Writer& writer, urLinear::Vector const& value) { writeComponents<3>(writer, value); }
void write(Writer& writer, urLinear::VectorFlt const& value) { writeComponents<3>(writer, value); }
void write(Writer& writer, urUtil::HSL const& value) { writeComponents<3>(writer, value); }
void write(Writer& writer, urUtil::Color const& value) { writeComponents<4>(writer, value); }
void write(Writer& writer, urLinear::Normal2 const& value) { writeComponents<2>(writer, value); }
void write(Writer& writer, urLinear::Normal const& value) { writeComponents<3>(writer, value); }
void write(Writer& writer, urLinear::NormalFlt const& value) { writeComponents<3>(writer, value); }
void write(Writer& writer, urLinear::AffineMatrix2 const& value) {
    writeNumbers<urLinear::AffineMatrix2::size>(writer, [&](int i) { return value.coefficient(i); });
}

void read(Reader& reader, urLinear::Plane& value) {
    readEntries(reader, "plane", "point", value.point, "normal", value.normal);
}
void read(Reader& reader, urLinear::Range1d& value) {
    value = {0, 0};
    readEntries(reader, "range1D", "min", value.min, "max", value.max);
}
void read(Reader& reader, urLinear::Range3d& value) {
    urLinear::Point min;
    urLinear::Point max;
    readEntries(reader, "range3D", "min", min, "max", max);
    value = urLinear::Range3d(min, max);
}

void write(Writer& writer, urLinear::Plane const& value) {
    writeEntries(writer, "point", value.point, "normal", value.normal);
}
void write(Writer& writer, urLinear::Range1d const& value) { writeEntries(writer, "min", value.min, "max", value.max); }
void write(Writer& writer, urLinear::Range3d const& value) { writeEntries(writer, "min", value.min, "max", value.max); }

}  // namespace nxRFL
