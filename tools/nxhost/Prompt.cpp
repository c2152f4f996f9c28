// Reading, evaluating, printing.
#include "tools/nxhost/Prompt.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "foundation/nxRFL/NativeFunction.h"
#include "foundation/nxRFL/Reader.h"
#include "foundation/nxRFL/Writer.h"
#include "support/services/Timeline.h"
#include "tools/nxhost/Host.h"
#include "tools/nxhost/trimmed.h"

namespace nxhost {

using nxRFL::Exception;
using nxRFL::Function;
using ur::Reference;
using urString::CString;

namespace {

/// Calls a function and prints its results, tables as text of a few lines. Takes what it needs from Lua now, since
/// scripts may change it.
constexpr char const* showSource = R"lua(
local helpText, nameOf = ...
local getmetatable, pairs, print, select, tostring, type = getmetatable, pairs, print, select, tostring, type
local format, gsub, sub = string.format, string.gsub, string.sub
local sort, concat, insert = table.sort, table.concat, table.insert
local gmatch, rawequal = string.gmatch, rawequal
local mostLines, mostDepth = 20, 8
local longestLine, mostWidth, longestText  -- set from the width of the terminal

local function sorted(a, b)
    if type(a) == type(b) and (type(a) == "number" or type(a) == "string") then return a < b end
    return type(a) < type(b)
end

-- At most that many bytes, and no part of a character.
local function beginning(text, most) return (gsub(sub(text, 1, most), "[\192-\255][\128-\191]*$", "")) end

local function quoted(value)
    if #value > longestText then value = beginning(value, longestText) .. "..." end
    return (gsub(format("%q", value), "\\\n", "\\n"))
end

-- The value on one line, or with each entry on lines of its own: lines.left counts those that may still come.
local function text(value, lines, indent, open)
    if type(value) == "string" then return quoted(value) end
    if type(value) ~= "table" or getmetatable(value) ~= nil then return tostring(value) end
    if open[value] or #indent > 2 * mostDepth then return "{...}" end
    open[value] = true
    local keys = {}
    for key in pairs(value) do insert(keys, key) end
    sort(keys, sorted)
    local parts, length, counted, isBroken = {}, #indent, 0, false
    for i = 1, #keys do
        if lines.left <= 0 then insert(parts, "...") break end
        local key = keys[i]
        local name = type(key) == "string" and key:match("^[%a_][%w_]*$") or "[" .. text(key, lines, indent .. "  ", open) .. "]"
        local part = text(value[key], lines, indent .. "  ", open)
        insert(parts, key == i and part or name .. " = " .. part)
        length = length + #parts[#parts] + 2
        isBroken = isBroken or length > mostWidth or part:find("\n", 1, true) ~= nil
        if isBroken then lines.left, counted = lines.left - (#parts - counted), #parts end
    end
    open[value] = nil
    if not isBroken then return "{" .. concat(parts, ", ") .. "}" end
    lines.left = lines.left - 1  -- of the brace at the end
    return "{\n  " .. indent .. concat(parts, ",\n  " .. indent) .. "\n" .. indent .. "}"
end

local function cut(line)
    return #line <= longestLine and line or beginning(line, longestLine - 3) .. "..."
end

local describe = host.describe

-- The lines about one function of the table `name`.
local function describeMember(name, member)
    local lines = {}
    for line in gmatch(describe(name), "[^\n]+") do
        local indent, rest = line:match("^( +)(.*)")
        rest = rest and gsub(rest, "^static ", "")
        if rest and sub(rest, 1, #member + 1) == member .. "(" then insert(lines, name .. "." .. rest) end
    end
    return concat(lines, "\n")
end

local function described(what)
    local name = tostring(what):match("^class (.*)") or getmetatable(what)
    if type(name) == "string" then return describe(name) end
    if type(what) == "function" then
        local holder, member = nameOf(what):match("^(.*)%.([^.]*)$")
        local found = holder and describeMember(holder, member) or ""
        if found ~= "" then return found end
    end
    for key, value in pairs(_G) do
        local isTable = key ~= "_G" and type(key) == "string" and type(value) == "table" and describe(key) ~= ""
        if isTable and rawequal(value, what) then return describe(key) end
        for member, offered in pairs(isTable and type(what) == "function" and value or {}) do
            if rawequal(offered, what) then return describeMember(key, member) end
        end
    end
    return ""
end

if help == nil then
    function help(...)
        if select("#", ...) == 0 then return print(helpText) end
        local what = ...
        local found = described(what)
        print(found ~= "" and gsub(found, "\n$", "") or "nothing is known of this " .. type(what))
    end
end

return function(width, call)
    longestLine, mostWidth, longestText = width, width - 20, width - 20
    local function show(...)
        local count, shown = select("#", ...), {...}
        for i = 1, count do
            local value = shown[i]
            local isPlain = type(value) == "table" and getmetatable(value) == nil
            shown[i] = isPlain and gsub(text(value, {left = mostLines}, "", {}), "[^\n]+", cut) or tostring(value)
        end
        if count > 0 then print(concat(shown, "\t")) end
    end
    show(call())
end
)lua";

constexpr char const* helpText =
    "Type Lua; what it gives is printed. Chunks may take several lines. Tab completes names, members and files in "
    "quotes.\n"
    "  help(x)      what an object, a class, a table or a function offers: help(host.document), help(nx.encodeJSON),\n"
    "               help(host.document.undo)\n"
    "  quit         ends the program, as Ctrl-D does";

/// The bytes of a line at most: the columns of the terminal.
int widthOfTerminal() {
    constexpr int least = 40, standard = 120;
    winsize size{};
    bool const isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? std::max<int>(size.ws_col, least) : standard;
}

/// The function that prints what another one returns.
Reference<Function> makeShow(Host& host) {
    auto const nameOf = [](Reference<Function> const& function) { return function ? function->describe() : CString(); };
    nxRFL::Stack arguments, results;
    nxRFL::Writer writer(arguments);
    writer.writeText(helpText);
    writer.writeFunction(nxRFL::makeFunction(*host.state().reflection().getDB(), nameOf));
    host.state().load(showSource, "=nxhost")->call(arguments, results);
    return nxRFL::Reader(results).readFunction();
}

/// The trace without the calls by which the prompt runs a line.
CString withoutPrompt(CString const& trace) {
    std::string_view rest = trace.view();
    for (;;) {
        std::size_t const last = std::min(rest.rfind('\n'), rest.size());
        std::string_view const line = rest.substr(last);
        if (!line.starts_with("\n\tnxhost:") && !line.starts_with("\n\t(tail call)")) return CString(rest);
        rest = rest.substr(0, last);
    }
}

}  // namespace

Prompt::Prompt(Host& host) : host_(host), show_(makeShow(host)), editor_(host.loop(), host.state()) {}

void Prompt::run() {
    Interrupt& interrupt = host_.loop().interrupt();
    while (readChunk()) {
        if (chunk_) evaluate(chunk_);
        if (host_.hasChosenExit() || interrupt.isFinal()) break;
        interrupt.clear();
    }
    host_.clearFailures();
}

bool Prompt::readChunk() {
    chunk_ = nullptr;
    std::string text;
    try {
        do {
            std::string line;
            switch (editor_.read(text.empty() ? "> " : ">> ", line)) {
                case LineEditor::Result::line: break;
                case LineEditor::Result::dropped: return true;
                case LineEditor::Result::interrupted: return !text.empty();  // the lines before are dropped
                case LineEditor::Result::end: return false;
            }
            text += line + "\n";
            if (trimmed(text) == "quit") return false;
            if (trimmed(text) == "help") return std::puts(helpText), true;
            chunk_ = compile(text);
        } while (!chunk_);
    } catch (Exception const& error) {
        host_.report(error);
    }
    return true;
}

Reference<Function> Prompt::compile(std::string const& text) const {
    nxLC::State& state = host_.state();
    std::size_t const expression = text.starts_with('=') ? 1 : 0;  // as Lua's own prompt has it
    try {
        return state.load("return " + text.substr(expression), "=prompt");
    } catch (Exception const&) {
        // A statement, or the beginning of something.
    }
    try {
        return state.load(text, "=prompt");
    } catch (Exception const& error) {
        if (error.message().endsWith("near '<eof>'")) return nullptr;
        throw;
    }
}

void Prompt::evaluate(Reference<Function> const& chunk) const {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    writer.writeInt(widthOfTerminal());
    writer.writeFunction(chunk);
    nxSupport::ScriptCallScope const call("prompt");
    try {
        show_->call(arguments, results);
    } catch (Exception const& error) {
        host_.report(Exception(error.message(), withoutPrompt(error.trace())));
    }
}

}  // namespace nxhost
