// Writes the text listing, and selects the format.
#include "foundation/nxRFL/listing.h"

#include "foundation/nxRFL/Parameter.h"
#include "foundation/nxRFL/impl/listings.h"

namespace nxRFL {

using urString::CString;

namespace impl {

std::span<CString const> argumentTypes(Function const& function) {
    std::size_t const before = function.isMethod() ? 2 : 1;
    std::span<CString const> const types = function.signature();
    return types.size() > before ? types.subspan(before) : std::span<CString const>();
}

CString resultType(Function const& function) {
    return function.signature().empty() ? CString("void") : function.signature().front();
}

}  // namespace impl

namespace {

void appendCall(CString& text, CString const& name, Function const& function) {
    text.append(name).append("(");
    char const* separator = "";
    auto const types = impl::argumentTypes(function);
    auto const named = function.parameters();
    for (std::size_t i = 0; i < types.size(); ++i) {
        text.append(separator);
        if (i < named.size()) text.append(named[i].name).append(function.mayOmit(i) ? "?: " : ": ");
        text.append(types[i]);
        separator = ", ";
    }
    text.append(")");
    CString const result = impl::resultType(function);
    if (result != "void") text.append(": ").append(result);
}

/// Appends one line per form.
void appendCalls(CString& text, char const* prefix, Member const& member) {
    impl::forEachForm(*member.function, [&](Function const& form) {
        text.append(prefix);
        appendCall(text, member.name, form);
        text.append("\n");
    });
}

void appendMember(CString& text, Member const& member) {
    switch (member.kind) {
        case Member::Kind::property:
            text.append("    ").append(member.name).append(": ").append(impl::resultType(*member.function));
            text.append(member.second ? "\n" : " (read-only)\n");
            break;
        case Member::Kind::iterator:
            text.append("    ").append(member.name).append("(): iterator of ");
            text.append(impl::resultType(*member.second)).append("\n");
            break;
        case Member::Kind::staticMethod: return appendCalls(text, "    static ", member);
        case Member::Kind::method:
        case Member::Kind::function: return appendCalls(text, "    ", member);
    }
}

}  // namespace

CString impl::textListing(Database const& database) {
    CString text;
    for (auto const& known : database.classes()) {
        text.append("class ").append(known->name());
        char const* separator = ": ";
        for (Class::Base const& link : known->bases()) {
            text.append(separator).append(link.base->name());
            separator = ", ";
        }
        text.append("\n");
        for (Member const& member : known->members()) appendMember(text, member);
    }
    for (auto const& table : database.tables()) {
        text.append("table ").append(table->name).append("\n");
        for (Member const& member : table->functions) appendMember(text, member);
    }
    return text;
}

CString listing(Database const& database, ListingFormat format) {
    switch (format) {
        case ListingFormat::text: return impl::textListing(database);
        case ListingFormat::json: return impl::jsonListing(database);
        case ListingFormat::luaStubs: return impl::luaStubs(database);
    }
    return {};
}

}  // namespace nxRFL
