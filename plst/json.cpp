// Implements the JSON functions on top of the readers and writers.
#include "plst/json.h"

#include <utility>

#include "foundation/urOS/AtomicFile.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "plst/impl/json/JsonTextWriter.h"
#include "plst/impl/json/StrictJsonWriter.h"
#include "plst/impl/json/StyledJsonWriter.h"
#include "plst/impl/json/readJson.h"

namespace nxPLST {

using urString::CString;

CString asJSON(ur::Reference<Item const> item) { return asJSON(std::move(item), mostExpandedText); }

CString asJSON(ur::Reference<Item const> item, std::uint64_t mostExpandedBytes) {
    if (!item) return "{}";
    urOS::MemoryIOStream stream(4096);
    static_cast<void>(stream.open(urOS::openForWriting));
    static_cast<void>(impl::JsonTextWriter(stream, mostExpandedBytes).write(item.get()));
    static_cast<void>(stream.close());
    return stream.contents();
}

bool outputJSON(urString::IString const& path, ur::Reference<Item const> item) {
    urOS::AtomicFile file;
    return file.open(path).ok() && impl::JsonTextWriter(file).write(item.get()) && file.commit().ok();
}

bool convertToJSON(CString& text, ur::Reference<Item const> item) {
    return convertToJSON(text, std::move(item), mostExpandedText);
}

bool convertToJSON(CString& text, ur::Reference<Item const> item, std::uint64_t mostExpandedBytes) {
    return impl::StrictJsonWriter(text, mostExpandedBytes).write(item.get());
}

bool writeJson(urString::CString& text, ur::Reference<Item const> item, JsonStyle const& style) {
    std::size_t const before = text.size();
    auto const takeBack = [&] { text.erase(before); };
    try {
        if (impl::StyledJsonWriter(text, style).write(item.get())) return true;
    } catch (...) {
        takeBack();
        throw;
    }
    takeBack();
    return false;
}

bool convertFromJSON(ur::Reference<Item>& out, std::string_view text) {
    return impl::readJson(out, text) != impl::JsonReading::refused;
}

bool convertFromJSON(ur::Reference<Item>& out, char const* text, unsigned int length) {
    return impl::readJson(out, {text, length}) != impl::JsonReading::refused;
}

}  // namespace nxPLST
