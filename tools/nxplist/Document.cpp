// Reads and writes files of every form.
#include "tools/nxplist/Document.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "foundation/io/ioFormat.h"
#include "foundation/io/ioStatus.h"
#include "foundation/urOS/AtomicFile.h"
#include "foundation/urOS/File.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "plst/JsonReport.h"
#include "plst/packets.h"
#include "tools/nxplist/Lines.h"
#include "tools/nxplist/Losses.h"
#include "tools/nxplist/Progress.h"

namespace nxplist {
namespace {

/// `about` precedes messages that do not name the file themselves.
void check(urUtil::Error const& error, std::string const& about = "") {
    if (error.ok()) return;
    throw Failure{ExitCode::unusable, "nxplist: " + about + (about.empty() ? "" : ": ") + printable(error.message())};
}

std::string outputName(std::string const& path) { return path == "-" ? "standard output" : printable(path); }

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }
bool isControl(char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; }

/// For people at a terminal: the line at `location`, shortened around that place, and a mark under the place.
std::string excerpt(std::string_view text, nxPLST::JsonLocation const& location) {
    constexpr std::size_t mostBefore = 100;
    constexpr std::size_t most = 160;
    std::size_t const offset = location.offset;
    std::size_t const lineBreak = offset > 0 ? text.rfind('\n', offset - 1) : text.npos;
    std::size_t const lineStart = lineBreak == text.npos ? 0 : lineBreak + 1;
    std::size_t const lineEnd = std::min(text.find('\n', offset), text.size());
    std::size_t first = offset - std::min(offset - lineStart, mostBefore);
    while (first < offset && first > lineStart && continuesCharacter(text[first])) ++first;
    std::size_t last = std::min(lineEnd, first + most);
    while (last < lineEnd && last > offset && continuesCharacter(text[last])) --last;

    std::string const leadIn = first > lineStart ? "    ..." : "    ";
    std::string shown(text.substr(first, last - first));
    std::ranges::replace_if(shown, isControl, ' ');
    auto const before = text.substr(first, offset - first);
    auto const column = before.size() - static_cast<std::size_t>(std::ranges::count_if(before, continuesCharacter));
    return "\n" + leadIn + shown + (last < lineEnd ? "..." : "") + "\n" + std::string(leadIn.size() + column, ' ') +
           "^";
}

void readJson(Document& document, urString::CString& text, Losses losses) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    nxPLST::JsonReport report;
    if (text.startsWith(byteOrderMark)) text.erase(0, byteOrderMark.size());
    bool const isRead = document.form == Form::lines ? convertFromLines(document.root, text.view(), report)
                                                     : nxPLST::convertFromJSON(document.root, text, report);
    if (!isRead) {
        std::string message = located(document.name, report.location, report.reason.view());
        if (isatty(STDERR_FILENO) == 1) message += excerpt(text.view(), report.location);
        throw Failure{ExitCode::negative, message};
    }
    document.losses = report.lossCount;
    document.hasComments = hasComments(text.view());
    if (losses != Losses::quiet) reportLosses(document.name, report);
    if (losses == Losses::refused && document.losses > 0) throw Failure{ExitCode::negative, ""};
}

urString::CString jsonOf(ur::Reference<nxPLST::Item const> const& item, std::string const& name, Form form,
                         nxPLST::JsonStyle const& style) {
    urString::CString text;
    if (form == Form::lines ? writeLines(text, item, style) : nxPLST::writeJson(text, item, style)) {
        return form == Form::lines ? text : text.append('\n');
    }
    throw Failure{ExitCode::negative, name + ": no JSON holds it: a number that is not finite"};
}

void readPackets(Document& document, urString::CString const& bytes) {
    urOS::MemoryIOStream stream(std::max<std::size_t>(bytes.size(), 1));
    check(stream.open(urOS::openForWriting));
    check(stream.write(bytes.data(), bytes.size()));
    check(stream.open(urOS::openRead));
    nxPLST::PacketReport report;
    if (nxPLST::read(stream, document.root, report)) return;
    throw Failure{ExitCode::negative, document.name + ": " + ioStatusText(report.status) + " (byte " +
                                          std::to_string(report.position) + ")"};
}

/// Throws `Failure` if an item of a document has no JSON form for another reason than its numbers.
void requireJson(nxPLST::Item const* item, Document const& document, std::uint64_t mostExpandedBytes) {
    if (document.form != Form::packets) return;  // a document read from JSON shares nothing and is UTF-8
    requireWithin(item, document.name, mostExpandedBytes);
    std::string const broken = pathOfBrokenText(item);
    if (broken.empty()) return;
    throw Failure{ExitCode::negative, document.name + ": no JSON holds it: bytes that are not UTF-8 at " + broken};
}

urString::CString textOf(Document const& document, Form form, nxPLST::JsonStyle const& style) {
    if (form == Form::dump) {
        requireWithin(document.root.get(), document.name, style.mostExpandedBytes);
        return nxPLST::asJSON(document.root, style.mostExpandedBytes);
    }
    requireJson(document.root.get(), document, style.mostExpandedBytes);
    return jsonOf(document.root, document.name, form, style);
}

void storeInto(urOS::IOStream& stream, Document const& document, std::string const& name, Form form,
               nxPLST::JsonStyle const& style) {
    if (form == Form::packets) {
        nxPLST::PacketReport report;
        if (!nxPLST::write(stream, document.root, report)) {
            check(report.error, name);
            throw Failure{ExitCode::unusable,
                          "nxplist: " + name + ": cannot write packets: " + ioStatusText(report.status)};
        }
        return;
    }
    urString::CString const text = textOf(document, form, style);
    check(stream.write(text.data(), text.size()), name);
}

}  // namespace

std::string inputName(std::string const& path) { return path == "-" ? "standard input" : printable(path); }

urString::CString contents(std::string const& path) {
    urOS::File file;
    std::uint64_t total = 0;
    if (path == "-") {
        check(file.attach(STDIN_FILENO, urOS::File::Ownership::borrowed));
    } else {
        check(file.open(path, urOS::openRead));
        if (file.size(total).isError()) total = 0;  // a pipe
    }
    urString::CString text;
    Progress progress("reading");
    std::size_t done = 0;
    do {
        constexpr std::size_t block = 1 << 20;
        std::size_t const before = text.size();
        text.resizeAndOverwrite(before + block, [&](char* bytes, std::size_t) {
            check(file.read(bytes + before, block, &done), inputName(path));
            return before + done;
        });
        progress.show(text.size(), total);
    } while (done > 0);
    return text;
}

Document load(std::string const& path, std::optional<Form> form, Losses losses) {
    Document document;
    document.name = inputName(path);
    urString::CString bytes = contents(path);
    Form const text = path.ends_with(".jsonl") ? Form::lines : Form::json;
    document.form = form.value_or(bytes.startsWith(ioFormat::fileMark) ? Form::packets : text);
    if (document.form == Form::packets) {
        readPackets(document, bytes);
    } else {
        readJson(document, bytes, losses);
    }
    return document;
}

void store(Document const& document, std::string const& path, Form form, nxPLST::JsonStyle const& style) {
    if (path == "-") {
        urOS::File out;
        check(out.attach(STDOUT_FILENO, urOS::File::Ownership::borrowed));
        storeInto(out, document, outputName(path), form, style);
        return;
    }
    urOS::AtomicFile out;
    check(out.open(path));
    storeInto(out, document, outputName(path), form, style);
    check(out.commit());
}

void report(Failure const& failure) {
    if (!failure.message.empty()) std::fprintf(stderr, "%s\n", failure.message.c_str());
}

std::string printable(std::string_view text) {
    std::string result(text);
    std::ranges::replace_if(result, isControl, '?');
    return result;
}

void requireWithin(nxPLST::Item const* root, std::string const& name, std::uint64_t limit) {
    nxPLST::Expansion const expansion = nxPLST::expansionOf(root);
    if (!expansion.shares || expansion.textBytes <= limit) return;
    throw Failure{ExitCode::negative, name + ": with every shared item in each of its places it is larger than " +
                                          std::to_string(limit >> 20) + " MiB (--limit MIB allows more)"};
}

urString::CString jsonText(ur::Reference<nxPLST::Item const> const& item, Document const& document,
                           Options const& options) {
    nxPLST::JsonStyle style = options.style;
    if (document.form == Form::lines || options.lines) style.indent = 0;
    requireJson(item.get(), document, style.mostExpandedBytes);
    return jsonOf(item, document.name, Form::json, style);
}

void printText(urString::CString const& text) {
    urOS::File out;
    check(out.attach(STDOUT_FILENO, urOS::File::Ownership::borrowed));
    check(out.write(text.data(), text.size()), outputName("-"));
}

}  // namespace nxplist
