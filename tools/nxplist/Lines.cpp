// Reads and writes files of lines.
#include "tools/nxplist/Lines.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "plst/Path.h"
#include "plst/casts.h"

namespace nxplist {
namespace {

using nxPLST::JsonReport;

/// Converts positions in one line to positions in the whole text.
class LinePlace {
public:
    LinePlace(std::size_t offset, std::size_t line, long index) : offset_(offset), line_(line), index_(index) {}

    void move(nxPLST::JsonLocation& location) const {
        location.offset += offset_;
        location.line += line_;
    }
    /// The reason may mention the line where something begins, which is always line 1 of that text.
    [[nodiscard]] urString::CString moved(urString::CString reason) const {
        constexpr std::string_view first = "line 1,";
        std::size_t const at = reason.view().find(first);
        if (at != std::string_view::npos) reason.replace(at, first.size(), "line " + std::to_string(line_ + 1) + ",");
        return reason;
    }
    void move(nxPLST::JsonLoss& loss) const {
        move(loss.location);
        std::string const path(loss.path);
        loss.path = nxPLST::indexText(index_) + (path == "." ? "" : path);
    }

private:
    std::size_t offset_;
    std::size_t line_;
    long index_;
};

void addLosses(JsonReport& report, JsonReport& ofLine, LinePlace const& place) {
    report.lossCount += ofLine.lossCount;
    for (auto& loss : ofLine.losses) {
        if (report.losses.size() == JsonReport::mostLosses) return;
        place.move(loss);
        report.losses.push_back(std::move(loss));
    }
}

bool isBlank(std::string_view line) { return line.find_first_not_of(" \t\r") == line.npos; }

}  // namespace

bool convertFromLines(ur::Reference<nxPLST::Item>& out, std::string_view text, JsonReport& report) {
    report = {};
    auto array = ur::make<nxPLST::Array>();
    long index = 0;
    std::size_t lineNumber = 0;
    for (std::size_t at = 0; at < text.size(); ++lineNumber) {
        std::size_t const end = std::min(text.find('\n', at), text.size());
        std::string_view const line = text.substr(at, end - at);
        LinePlace const place(std::exchange(at, end + 1), lineNumber, index);
        if (isBlank(line)) continue;
        ++index;
        ur::Reference<nxPLST::Item> value;
        JsonReport ofLine;
        if (!nxPLST::convertFromJSON(value, line, ofLine)) {
            report.reason = place.moved(std::move(ofLine.reason));
            report.location = ofLine.location;
            place.move(report.location);
            return false;
        }
        addLosses(report, ofLine, place);
        if (value) array->insert(std::move(value));
    }
    out = std::move(array);
    return true;
}

bool writeLines(urString::CString& text, ur::Reference<nxPLST::Item const> const& root, nxPLST::JsonStyle style) {
    style.indent = 0;
    auto const writeLine = [&](ur::Reference<nxPLST::Item const> const& item) {
        if (!nxPLST::writeJson(text, item, style)) return false;
        text.append('\n');
        return true;
    };
    auto const array = nxPLST::asArray(root);
    return array ? std::ranges::all_of(array->array(), writeLine) : !root || writeLine(root);
}

}  // namespace nxplist
