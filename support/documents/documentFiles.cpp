// Files of both forms.
#include "support/documents/documentFiles.h"

#include <algorithm>
#include <array>
#include <limits>

#include "foundation/io/ioFormat.h"
#include "foundation/urOS/AtomicFile.h"
#include "foundation/urOS/File.h"
#include "foundation/urOS/Filename.h"
#include "plst/JsonReport.h"
#include "plst/packets.h"
#include "support/documents/Autosave.h"
#include "support/documents/impl/ObjectReader.h"
#include "support/documents/impl/ObjectWriter.h"
#include "support/documents/impl/errorAbout.h"
#include "support/documents/impl/lines.h"

namespace nxSupport {

using impl::errorAbout;
using impl::ObjectReader;
using impl::ObjectWriter;
using nxPLST::Item;
using ur::Reference;
using urString::CString;
using urString::IString;
using urUtil::Error;

namespace {

constexpr double partOfReading = 0.5;  // of the time that opening takes

/// The style of files. JSON cannot hold nulls: reading drops them.
constexpr nxPLST::JsonStyle fileStyle = {.refuseNulls = true};

bool isWritable(Item const& value) {
    CString text;
    return nxPLST::writeJson(text, Reference<Item const>(&value), fileStyle);
}

/// Names the first value below `top` that made JSON fail.
CString unwritable(Object const& top) {
    ur::vector<Object const*> left = {&top};
    while (!left.empty()) {
        Object const& object = *left.back();
        left.pop_back();
        if (auto const values = object.values()) {
            for (auto const& [name, value] : values->dictionary()) {
                if (isWritable(*value)) continue;
                return CString("object \"")
                    .append(object.path())
                    .append("\", property \"")
                    .append(name)
                    .append("\": has a null or a number that is not finite, or is too large for JSON");
            }
        }
        for (Object const& child : object.children()) left.push_back(&child);
    }
    return "is too large for JSON";
}

/// Objects of a class, and copies, share items. The text may be so many times what it would be without the shared ones.
constexpr std::uint64_t mostExpansion = 16;
constexpr std::uint64_t mostOwnText = std::numeric_limits<std::uint64_t>::max() / mostExpansion;

bool writeText(CString& text, Reference<nxPLST::Dictionary> const& file) {
    if (nxPLST::writeJson(text, file, fileStyle)) return true;
    nxPLST::JsonStyle style = fileStyle;
    style.mostExpandedBytes = mostExpansion * std::min(nxPLST::expansionOf(file.get()).ownTextBytes, mostOwnText);
    return nxPLST::writeJson(text, file, style);
}

Error writeTo(urOS::IOStream& stream, Document const& document, FileForm form, IString const& path) {
    Object const* const root = &document.root();
    auto const file = ObjectWriter(document.catalog()).write({&root, 1});
    if (form == FileForm::json) {
        CString text;
        if (!writeText(text, file)) return errorAbout(path, unwritable(*root));
        text.append('\n');
        return stream.write(text.data(), text.size());
    }
    nxPLST::PacketReport report;
    if (nxPLST::write(stream, file, report)) return {};
    return report.error.isError() ? report.error : errorAbout(path, "cannot be written as packets");
}

/// A file that reports how much of it was read.
class WatchedFile final : public urOS::IOStream {
public:
    WatchedFile(urOS::File& file, OpenProgress const& progress) : file_(file), progress_(progress) {
        std::uint64_t bytes = 0;
        if (file_.size(bytes).ok() && bytes > 0) size_ = static_cast<double>(bytes);
    }

    Error read(void* buffer, std::size_t count, std::size_t* done) override {
        std::size_t got = 0;
        if (Error error = file_.read(buffer, count, &got); error.isError()) return error;
        if (done) *done = got;
        read_ += static_cast<double>(got);
        isCancelled_ = progress_ && !progress_(partOfReading * std::min(read_ / size_, 1.0));
        return isCancelled_ ? Error(0, "was cancelled") : Error();
    }
    Error write(void const*, std::size_t, std::size_t*) override { return {0, "is only read"}; }

private:
    urOS::File& file_;
    OpenProgress const& progress_;
    double read_ = 0;
    double size_ = 1;
    bool isCancelled_ = false;
};

/// What a file holds, and its text if it is JSON.
struct Content {
    Reference<Item> item;
    CString text;
};

Error readPackets(urOS::IOStream& stream, IString const& path, Content& content) {
    nxPLST::PacketReport report;
    if (nxPLST::read(stream, content.item, report)) return {};
    if (report.error.isError()) return errorAbout(path, report.error.message());
    return errorAbout(path, CString::format("byte %llu: is damaged", static_cast<unsigned long long>(report.position)));
}

Error readJson(urOS::IOStream& stream, IString const& path, Content& content) {
    if (Error const error = stream.readAll(content.text); error.isError()) return errorAbout(path, error.message());
    nxPLST::JsonReport report;
    bool const isRead = nxPLST::convertFromJSON(content.item, content.text, report);
    if (isRead && report.lossCount == 0) return {};
    auto const at = [](nxPLST::JsonLocation const& location) { return CString::format("line %zu: ", location.line); };
    if (!isRead) return errorAbout(path, at(report.location).append(report.reason));
    nxPLST::JsonLoss const& loss = report.losses.front();
    return errorAbout(path, at(loss.location).append(describe(loss.kind)).append(" at ").append(loss.path));
}

Error readContent(IString const& path, OpenProgress const& progress, Content& content) {
    urOS::File file;
    if (Error error = file.open(path, urOS::openRead); error.isError()) return error;
    std::array<char, ioFormat::fileMark.size()> start{};
    std::size_t size = 0;
    if (Error const error = file.read(start.data(), start.size(), &size); error.isError())
        return errorAbout(path, error.message());
    if (Error const error = file.seek(0); error.isError()) return errorAbout(path, error.message());
    WatchedFile watched(file, progress);
    bool const isPackets = std::string_view(start.data(), size) == ioFormat::fileMark;
    return isPackets ? readPackets(watched, path, content) : readJson(watched, path, content);
}

CString placeOf(nxPLST::Path const& fault, IString const& path, Content const& content) {
    if (!content.text.empty()) return CString::format("line %zu: ", impl::lineOf(content.text.view(), fault));
    urOS::File file;
    if (file.open(path, urOS::openRead).isError()) return {};
    return CString::format("byte %llu: ", static_cast<unsigned long long>(nxPLST::packetPosition(file, fault)));
}

}  // namespace

Error save(Document& document, IString const& path, FileForm form) {
    if (document.history().depth() > 0) return errorAbout(path, "cannot be saved while a transaction is open");
    if (form == FileForm::byName) {
        auto const isJson = urOS::Filename(path).extension() == IString("json");
        form = isJson ? FileForm::json : FileForm::packets;
    }
    urOS::AtomicFile file;
    if (Error error = file.open(path); error.isError()) return error;
    if (Error error = writeTo(file, document, form, path); error.isError()) return error;
    if (Error error = file.commit(); error.isError()) return error;
    document.setUnmodified();
    static_cast<void>(discardAutosave(document));
    return {};
}

Error open(Document& document, IString const& path, OpenProgress const& progress) {
    if (document.history().depth() > 0) return errorAbout(path, "cannot be opened while a transaction is open");
    Content content;
    if (Error error = readContent(path, progress, content); error.isError()) return error;
    auto const afterReading = [&](double done) { return progress(partOfReading + (1 - partOfReading) * done); };
    ObjectReader reader(document, ObjectReader::Identities::kept,
                        progress ? ObjectReader::Progress(afterReading) : nullptr);
    if (!reader.read(content.item) || !reader.checkRoot()) {
        CString const place = reader.isCancelled() ? CString() : placeOf(reader.faultPath(), path, content);
        return errorAbout(path, CString(place).append(reader.fault()));
    }
    if (!reader.install(ObjectReader::Origin::saved)) return errorAbout(path, "cannot be opened during undo");
    return {};
}

}  // namespace nxSupport
