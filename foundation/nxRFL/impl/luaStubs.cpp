// Writes the listing for Lua editors: declarations without bodies.
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

/// The type in the editors' notation; empty for none.
CString annotation(CString const& type) {
    if (type == "void") return {};
    if (type == "object" || type == "value") return "any";
    if (type == "array") return "any[]";
    if (type == "dictionary") return "table<string, any>";
    if (type.endsWith("]")) return type.substr(0, type.find('[')) == "number" ? "number[]" : "any[]";
    return dotted(type);
}

/// Visits each argument's name, whether calls may omit it, and its annotation.
template <class Visit>
void forEachParameter(Function const& function, Visit visit) {
    auto const named = function.parameters();
    auto const types = argumentTypes(function);
    for (std::size_t i = 0; i < types.size(); ++i) {
        bool const isNamed = i < named.size();
        visit(isNamed ? named[i].name : CString::format("argument%d", static_cast<int>(i) + 1), function.mayOmit(i),
              annotation(types[i]));
    }
}

/// Writes the declarations; each table comes before its content.
class StubText {
public:
    void declareOuterTablesOf(CString const& name) {
        for (std::size_t dot = name.find('.'); dot != CString::npos; dot = name.find('.', dot + 1))
            declareTable(name.substr(0, dot));
    }
    void declareTable(CString const& name) {
        if (declared_.insert(name).second) text_.append(name).append(" = {}\n");
    }
    void declareIterator(CString const& owner, Member const& member) {
        text_.append("---@return fun(): ");
        text_.append(member.second->givesSeveral() ? CString("any, any") : annotation(resultType(*member.second)));
        text_.append("\nfunction ").append(owner).append(":").append(member.name).append("() end\n");
    }
    /// The first form as a function, the others as its overloads.
    void declareFunction(CString const& owner, char const* separator, Member const& member) {
        Function const& function = *member.function;
        auto const forms = function.overloads();
        for (std::size_t i = 1; i < forms.size(); ++i) declareOverload(owner, *forms[i]);
        Function const& first = forms.empty() ? function : *forms.front();
        CString parameters;
        forEachParameter(first, [&](CString const& name, bool optional, CString const& type) {
            text_.append("---@param ").append(name).append(optional ? "? " : " ").append(type).append("\n");
            parameters.append(parameters.empty() ? "" : ", ").append(name);
        });
        CString const result = annotation(resultType(first));
        if (!result.empty()) text_.append("---@return ").append(result).append("\n");
        text_.append("function ").append(owner).append(separator).append(member.name);
        text_.append("(").append(parameters).append(") end\n");
    }
    void declareOverload(CString const& owner, Function const& function) {
        text_.append("---@overload fun(");
        char const* comma = "";
        if (function.isMethod()) {
            text_.append("self: ").append(owner);
            comma = ", ";
        }
        forEachParameter(function, [&](CString const& name, bool optional, CString const& type) {
            text_.append(comma).append(name).append(optional ? "?: " : ": ").append(type);
            comma = ", ";
        });
        CString const result = annotation(resultType(function));
        text_.append(result.empty() ? ")" : "): ").append(result).append("\n");
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
            if (member.kind == Member::Kind::iterator) {
                declareIterator(name, member);
            } else {
                declareFunction(name, member.kind == Member::Kind::staticMethod ? "." : ":", member);
            }
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
