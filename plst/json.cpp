// The functions of the JSON bridge over its readers and writers.
#include "plst/json.h"

#include "foundation/urOS/AtomicFile.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "plst/impl/JsonTextWriter.h"
#include "plst/impl/StrictJsonWriter.h"
#include "plst/impl/readJson.h"

namespace nxPLST {

using urString::CString;

CString asJSON(ur::Reference<Item const> item) {
    if (!item) return "{}";
    urOS::MemoryIOStream stream(4096);
    static_cast<void>(stream.open(urOS::openForWriting));
    impl::JsonTextWriter(stream).write(item.get());
    static_cast<void>(stream.close());
    return stream.contents();
}

bool outputJSON(urString::IString const& path, ur::Reference<Item const> item) {
    urOS::AtomicFile file;
    return file.open(path).ok() && impl::JsonTextWriter(file).write(item.get()) && file.commit().ok();
}

bool convertToJSON(CString& text, ur::Reference<Item const> item) {
    return impl::StrictJsonWriter(text).write(item.get());
}

bool convertFromJSON(ur::Reference<Item>& out, CString const& text) {
    return impl::readJson(out, text) != impl::JsonReading::refused;
}

bool convertFromJSON(ur::Reference<Item>& out, char const* text, unsigned int length) {
    return impl::readJson(out, {text, length}) != impl::JsonReading::refused;
}

}  // namespace nxPLST
