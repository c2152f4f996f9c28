// Reads lists of debug codes and suggests corrections of misspelt names.
#include "support/services/debugList.h"

#include <charconv>

#include "foundation/urString/NearestName.h"
#include "support/services/Debug.h"

namespace nxSupport {
namespace {

enum class State { off, on };

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view prefix = "debug_";

std::string_view trimmed(std::string_view text) {
    std::size_t const begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

/// The name in lower case without the prefix that all names have, for comparison.
urString::CString normalized(std::string_view name) {
    urString::CString result(name);
    result.toLowerCase();
    if (result.startsWith(prefix)) result.erase(0, prefix.size());
    return result;
}

/// Returns `NUM_CODES` if no name is similar to the entry.
DebugCode nearestCode(std::string_view entry) {
    urString::CString const wanted = normalized(entry);
    urString::NearestName nearest(wanted.view());
    auto meant = NUM_CODES;
    for (int i = 0; i < NUM_CODES; ++i) {
        auto const code = static_cast<DebugCode>(i);
        if (nearest.offer(normalized(Debug::getCodeName(code)).view())) meant = code;
    }
    return meant;
}

/// Returns `NUM_CODES` if the number is too large or the entry is not a number.
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

/// Returns false if the entry names no code.
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

/// Removes the text up to the next comma from the list and returns it.
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
