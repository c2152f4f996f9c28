// Reading lists of debug codes, and guessing what a misspelt name should have been.
#include "support/services/debugList.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <numeric>

#include "support/services/Debug.h"

namespace nxSupport {
namespace {

enum class State { off, on };

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view prefix = "debug_";
constexpr std::size_t longestCompared = 63;  ///< bytes of an entry; names are shorter

std::string_view trimmed(std::string_view text) {
    std::size_t const begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

/// What is left to compare when case and the prefix that all names have do not count.
urString::CString essence(std::string_view name) {
    urString::CString result(name.substr(0, longestCompared));
    result.toLowerCase();
    if (result.startsWith(prefix)) result.erase(0, prefix.size());
    return result;
}

/// The number of bytes to insert, drop or replace to make one of the other (Wagner and Fischer, 1974).
std::size_t editDistance(std::string_view a, std::string_view b) {
    std::array<std::size_t, longestCompared + 1> row{};
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            std::size_t const replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row[b.size()];
}

/// `NUM_CODES` when every name differs from the entry in more than half of its bytes.
DebugCode nearestCode(std::string_view entry) {
    urString::CString const wanted = essence(entry);
    auto nearest = NUM_CODES;
    std::size_t least = urString::CString::npos;
    for (int i = 0; i < NUM_CODES; ++i) {
        auto const code = static_cast<DebugCode>(i);
        urString::CString const name = essence(Debug::getCodeName(code));
        std::size_t const distance = editDistance(wanted, name);
        if (distance >= least || 2 * distance > std::max(wanted.size(), name.size())) continue;
        nearest = code;
        least = distance;
    }
    return nearest;
}

/// `NUM_CODES` for any number that is too large, and for what is none.
DebugCode codeOfNumber(std::string_view entry) {
    unsigned number = 0;
    auto const [end, error] = std::from_chars(entry.data(), entry.data() + entry.size(), number);
    bool const isCode = error == std::errc() && end == entry.data() + entry.size() && number < NUM_CODES;
    return isCode ? static_cast<DebugCode>(number) : NUM_CODES;
}

void set(DebugCode code, State state) {
    Debug& debug = Debug::getInstance();
    state == State::on ? debug.enable(code) : debug.disable(code);
}

/// False when the entry names no code.
bool apply(std::string_view entry, State state) {
    if (entry == "*") {
        for (int i = 0; i < NUM_CODES; ++i) set(static_cast<DebugCode>(i), state);
        return true;
    }
    DebugCode code = codeOfNumber(entry);
    if (code == NUM_CODES) code = Debug::getInstance().findCodeByName(urString::CString(entry));
    if (code == NUM_CODES) return false;
    set(code, state);
    return true;
}

/// Takes the text up to the next comma off the list.
std::string_view takeEntry(std::string_view& list) {
    std::size_t const end = std::min(list.find(','), list.size());
    std::string_view const entry = trimmed(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
    return entry;
}

}  // namespace

urString::CString UnknownDebugCode::message() const {
    urString::CString text("there is no ");
    text.append(entry);
    return nearest == NUM_CODES ? text : text.append("; do you mean ").append(Debug::getCodeName(nearest)).append("?");
}

ur::vector<UnknownDebugCode> switchDebugCodes(std::string_view list) {
    ur::vector<UnknownDebugCode> unknown;
    while (!list.empty()) {
        std::string_view entry = takeEntry(list);
        State const state = entry.starts_with('-') ? State::off : State::on;
        if (state == State::off) entry = trimmed(entry.substr(1));
        if (!entry.empty() && !apply(entry, state)) unknown.push_back({urString::CString(entry), nearestCode(entry)});
    }
    return unknown;
}

}  // namespace nxSupport
