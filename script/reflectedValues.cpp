// Reads and writes planes and ranges.
#include "script/reflectedValues.h"

namespace nxRFL {

using urString::CString;

namespace {

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
