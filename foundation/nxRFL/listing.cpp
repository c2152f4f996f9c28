// The listing for people, and the choice among the formats.
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

void appendCall(CString& text, Member const& member) {
    text.append(member.name).append("(");
    char const* separator = "";
    auto const types = impl::argumentTypes(*member.function);
    auto const named = member.function->parameters();
    for (std::size_t i = 0; i < types.size(); ++i) {
        text.append(separator);
        if (i < named.size()) text.append(named[i].name).append(named[i].without ? "?: " : ": ");
        text.append(types[i]);
        separator = ", ";
    }
    text.append(")");
    CString const result = impl::resultType(*member.function);
    if (result != "void") text.append(": ").append(result);
}

void appendMember(CString& text, Member const& member) {
    text.append("    ");
    switch (member.kind) {
        case Member::Kind::property:
            text.append(member.name).append(": ").append(impl::resultType(*member.function));
            if (!member.second) text.append(" (read-only)");
            break;
        case Member::Kind::iterator:
            text.append(member.name).append("(): iterator of ").append(impl::resultType(*member.second));
            break;
        case Member::Kind::staticMethod:
            text.append("static ");
            appendCall(text, member);
            break;
        case Member::Kind::method:
        case Member::Kind::function: appendCall(text, member); break;
    }
    text.append("\n");
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
