// The listing for editors of Lua: declarations without bodies.
#include <set>

#include "foundation/nxRFL/Parameter.h"
#include "foundation/nxRFL/impl/listings.h"

namespace nxRFL::impl {

using urString::CString;

namespace {

CString dotted(CString name) {
    name.replace("::", ".");
    return name;
}

/// The type as editors know it; empty for none.
CString annotation(CString const& type) {
    if (type == "void") return {};
    if (type == "object" || type == "value") return "any";
    if (type == "array") return "any[]";
    if (type == "dictionary") return "table<string, any>";
    if (type.endsWith("]")) return type.substr(0, type.find('[')) == "number" ? "number[]" : "any[]";
    return dotted(type);
}

/// Writes the declarations, and each table before what lies in it.
class StubText {
public:
    void declareOuterTablesOf(CString const& name) {
        for (std::size_t dot = name.find('.'); dot != CString::npos; dot = name.find('.', dot + 1))
            declareTable(name.substr(0, dot));
    }
    void declareTable(CString const& name) {
        if (declared_.insert(name).second) text_.append(name).append(" = {}\n");
    }
    void declareFunction(CString const& owner, char const* separator, Member const& member) {
        if (member.kind == Member::Kind::iterator) {
            CString const value = resultType(*member.second);
            text_.append("---@return fun(): ");
            text_.append(member.second->givesSeveral() ? CString("any, any") : annotation(value)).append("\n");
        }
        CString parameters;
        auto const types =
            member.kind == Member::Kind::iterator ? std::span<CString const>() : argumentTypes(*member.function);
        auto const named = member.function->parameters();
        for (std::size_t i = 0; i < types.size(); ++i) {
            bool const isNamed = i < named.size();
            CString const name = isNamed ? named[i].name : CString::format("argument%d", static_cast<int>(i) + 1);
            text_.append("---@param ").append(name).append(isNamed && named[i].without ? "? " : " ");
            text_.append(annotation(types[i])).append("\n");
            parameters.append(parameters.empty() ? "" : ", ").append(name);
        }
        CString const result = annotation(resultType(*member.function));
        if (member.kind != Member::Kind::iterator && !result.empty())
            text_.append("---@return ").append(result).append("\n");
        text_.append("function ").append(owner).append(separator).append(member.name);
        text_.append("(").append(parameters).append(") end\n");
    }
    void declareClass(Class const& known) {
        CString const name = dotted(known.name());
        declareOuterTablesOf(name);
        text_.append("\n---@class ").append(name);
        for (Class::Base const& link : known.bases())
            text_.append(&link == &known.bases().front() ? " : " : ", ").append(dotted(link.base->name()));
        text_.append("\n");
        for (Member const& member : known.members()) {
            if (member.kind != Member::Kind::property) continue;
            text_.append("---@field ").append(member.name).append(" ");
            text_.append(annotation(resultType(*member.function))).append(member.second ? "\n" : " read-only\n");
        }
        declareTable(name);
        for (Member const& member : known.members()) {
            if (member.kind == Member::Kind::property) continue;
            declareFunction(name, member.kind == Member::Kind::staticMethod ? "." : ":", member);
        }
    }
    [[nodiscard]] CString take() { return std::move(text_); }

private:
    CString text_{"---@meta\n"};
    std::set<CString> declared_;
};

}  // namespace

CString luaStubs(Database const& database) {
    StubText stubs;
    for (auto const& known : database.classes()) stubs.declareClass(*known);
    for (auto const& table : database.tables()) {
        CString const name = dotted(table->name);
        stubs.declareOuterTablesOf(name);
        stubs.declareTable(name);
        for (Member const& member : table->functions) stubs.declareFunction(name, ".", member);
    }
    return stubs.take();
}

}  // namespace nxRFL::impl
