// Builds scripts from everything that nxhost offers, and runs them in its sandbox with budgets. Each script must end
// within its budgets, and the account must be empty after the host is destroyed.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/nxRFL/Database.h"
#include "fuzz/require.h"
#include "support/messaging/Context.h"
#include "tools/nxhost/Host.h"

namespace {

using nxRFL::Member;

constexpr int mostTurns = 3;
constexpr std::size_t mostMemory = std::size_t(8) << 20U;

/// `o` holds the last object of each class, `last` the last value of any kind. Nothing here may fail the script.
constexpr std::string_view prelude = R"lua(
    o, last = {}, nil
    local function keep(...)
        for i = 1, select("#", ...) do
            last = select(i, ...)
            local class = type(last) == "userdata" and tostring(last):match("^([%w_:]+): ")
            if class then o[class] = last end
        end
    end
    function try(f) return keep(select(2, pcall(f))) end
    for _, value in pairs(host) do keep(value) end
    host.document:describe{name = "Node", children = {"Node"}, properties = {{name = "size", value = 1, maximum = 9}}}
    keep(host.document.root:add("Node"), host.document.root:add("Node", {size = 2}))
)lua";

/// Generates a script from bytes; reads zeros after the last byte.
class Author {
public:
    Author(nxRFL::Database const& database, std::uint8_t const* bytes, std::size_t size) noexcept
        : database_(database), bytes_(bytes), left_(size) {}

    std::string script() {
        std::string text(prelude);
        while (left_ > 0) text += statement(0) + "\n";
        return text;
    }

private:
    std::uint8_t byte() noexcept {
        if (left_ == 0) return 0;
        --left_;
        return *bytes_++;
    }
    template <std::size_t count>
    char const* one(char const* const (&texts)[count]) noexcept {
        return texts[byte() % count];
    }

    std::string statement(int depth) {
        switch (byte() % 8) {
            case 0: return "try(function() return " + library(depth) + " end)";
            case 1: return "try(function() " + repeated(depth) + " end)";
            case 2: return "try(function() return " + function(depth) + " end)";
            default: return "try(function() " + member(depth) + " end)";
        }
    }
    std::string repeated(int depth) {
        std::string const inner = depth < 2 ? statement(depth + 1) : "";
        return "for i = 1, " + std::string(one({"3", "40", "1e9"})) + " do " + inner + " end";
    }
    std::string library(int depth) {
        std::string const name =
            one({"string.rep", "unpack", "table.insert", "table.concat", "string.format", "string.find", "string.gsub",
                 "collectgarbage", "coroutine.wrap", "coroutine.resume", "coroutine.create", "pcall", "select",
                 "setmetatable", "nx.createLCStack", "nx.decodeJSON2", "nx.random", "nx.setLCPropertyAssignmentHook",
                 "tostring"});
        return name + arguments(depth, byte() % 4);
    }
    /// A call of a function in a table of functions.
    std::string function(int depth) {
        auto const& tables = database_.tables();
        auto const& table = *tables[byte() % tables.size()];
        if (table.functions.empty()) return "nil";
        Member const& chosen = pick(table.functions);
        // Do not end the program, and do not sleep.
        if (chosen.name == "exit") return "nil";
        return "_G['" + text(table.name) + "']." + text(chosen.name) + argumentsOf(*chosen.function, depth);
    }
    std::string member(int depth) {
        auto const& classes = database_.classes();
        nxRFL::Class const& chosen = *classes[byte() % classes.size()];
        if (chosen.members().empty()) return "";
        Member const& used = pick(chosen.members());
        std::string const object = "o['" + text(chosen.name()) + "']";
        if (chosen.otherNames() && byte() % 4 == 0) {
            std::string const other = object + one({".size", ".name", ".free", "[string.rep('n', 300)]", "[1]"});
            return byte() % 2 == 0 ? other + " = " + value(depth) : "return " + other;
        }
        switch (used.kind) {
            case Member::Kind::property:
                if (used.second && byte() % 2 == 0) return object + "." + text(used.name) + " = " + value(depth);
                return "return " + object + "." + text(used.name);
            case Member::Kind::iterator:
                return "for a, b in " + object + ":" + text(used.name) + "() do last = a " +
                       (depth < 2 ? statement(depth + 1) : "") + " end";
            case Member::Kind::staticMethod:
                return "return _G['" + text(chosen.name()) + "']." + text(used.name) +
                       argumentsOf(*used.function, depth);
            default: return "return " + object + ":" + text(used.name) + argumentsOf(*used.function, depth);
        }
    }
    Member const& pick(nxRFL::MemberList const& members) {
        auto const count = static_cast<std::size_t>(std::distance(members.begin(), members.end()));
        return *std::next(members.begin(), static_cast<std::ptrdiff_t>(byte() % count));
    }
    static std::string text(urString::CString const& name) { return name.c_str(); }

    /// Mostly values of the types that the function takes.
    std::string argumentsOf(nxRFL::Function const& called, int depth) {
        std::size_t const skipped = called.isMethod() ? 2 : 1;
        std::string result = "(";
        for (std::size_t i = skipped; i < called.signature().size(); ++i) {
            if (i > skipped) result += ", ";
            result += byte() % 8 == 0 ? value(depth) : valueOf(called.signature()[i].view(), depth);
        }
        return result + ")";
    }
    std::string arguments(int depth, int count) {
        std::string result = "(";
        for (int i = 0; i < count; ++i) result += (i > 0 ? ", " : "") + value(depth);
        return result + ")";
    }
    std::string valueOf(std::string_view type, int depth) {
        if (type == "string") return string();
        if (type == "number") return number();
        if (type == "boolean") return one({"true", "false"});
        if (type == "function") return callable(depth);
        if (type.find("::") != type.npos) return "o['" + std::string(type) + "']";
        return value(depth);
    }
    std::string value(int depth) {
        switch (byte() % 8) {
            case 0: return string();
            case 1: return number();
            case 2: return callable(depth);
            case 3: return one({"nil", "true", "host", "nx", "_G", "nxNet.Request", "o['nxRFL::Stack']"});
            case 4: return depth < 3 ? "{" + value(depth + 1) + ", " + value(depth + 1) + "}" : "{}";
            case 5: return depth < 3 ? "{a = " + value(depth + 1) + ", b = last}" : "{a = 1}";
            case 6:
                return one({"{size = 3, name = 'n', after = last}",
                            "{name = 'Leaf', base = 'Node', properties = {{name = 'p', value = last}}}",
                            "(function() local t = {} for i = 1, 50 do t = {t, t} end return t end)()",
                            "(function() local t = {} for i = 1, 9000 do t = {t} end return t end)()",
                            "(function() local t = {} for i = 1, 9000 do t[i] = i end return t end)()",
                            "(function() local t = {} t[1] = t return t end)()"});
            default: return "last";
        }
    }
    /// No names for which a name server would be queried.
    std::string string() {
        return one({"''", "'a b'", "'http://127.0.0.1:9/'", "'file:///etc/passwd'", "'GET'", "'a\\0b'", "'\\255\\n'",
                    "'Undecided'", "'Const'", "'Node'", "'size'", "'/[0]/[0]'", "'[1,{\"a\":null}]'",
                    "('x y'):rep(100000)", "('%s*'):rep(50)", "tostring(last):rep(9) .. ' '"});
    }
    std::string number() {
        return one({"0", "1", "-1", "0.5", "3", "200", "2^31", "-2^31", "2^32 + 1", "-4e9", "2^53", "1e308", "0/0",
                    "1/0", "70000"});
    }
    std::string callable(int depth) {
        if (depth >= 2) return one({"print", "error", "host.turn", "coroutine.yield", "tostring"});
        return "function(...) last = ... " + statement(depth + 1) + " return last end";
    }

    nxRFL::Database const& database_;
    std::uint8_t const* bytes_;
    std::size_t left_;
};

nxhost::Options options() {
    nxhost::Options result;
    result.library = nxLC::Library::sandboxed;
    result.network.sandboxed = true;
    result.limits = {.instructions = 20'000, .memory = 0, .totalMemory = mostMemory};
    result.cacheLimit = 1 << 20;
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    constexpr std::size_t longest = 4096;
    std::shared_ptr<ur::Account> account;
    {
        nxhost::Host host(options());
        nxSupport::Context const context(&host.domain(), nxSupport::Context::Undecided);
        nxRFL::Database const& database = *host.state().reflection().getDB();
        account = database.account();
        std::string const script = Author(database, bytes, std::min(size, longest)).script();
        static_cast<void>(host.state().run(script, "=fuzz"));
        require(account->used() <= 2 * mostMemory, "what scripts keep is within the limit");
        // A script may keep scheduling functions, as many as memory allows.
        host.state().setLimits({.instructions = 500, .totalMemory = mostMemory});
        for (int turns = 0; turns < mostTurns && host.loop().busy(); ++turns) host.loop().runOnce();
    }
    require(account->used() == 0, "nothing stays on the account");
    return 0;
}
