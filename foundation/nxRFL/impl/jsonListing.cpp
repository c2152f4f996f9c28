// Writes the JSON listing.
#include "foundation/nxRFL/Parameter.h"
#include "foundation/nxRFL/impl/listings.h"

namespace nxRFL::impl {

using urString::CString;

namespace {

/// Writes JSON values one after the other and adds the commas.
class JsonText {
public:
    JsonText& open(char bracket) {
        separate();
        text_.append(bracket);
        first_ = true;
        return *this;
    }
    JsonText& close(char bracket) {
        text_.append(bracket);
        first_ = false;
        return *this;
    }
    JsonText& key(char const* name) {
        string(name);
        text_.append(":");
        first_ = true;
        return *this;
    }
    JsonText& string(std::string_view text) {
        separate();
        text_.append("\"");
        for (char const character : text) {
            if (character == '"' || character == '\\') text_.append("\\");
            if (static_cast<unsigned char>(character) < ' ') {
                text_.append(CString::format("\\u%04x", character));
            } else {
                text_.append(character);
            }
        }
        text_.append("\"");
        return *this;
    }
    JsonText& boolean(bool value) {
        separate();
        text_.append(value ? "true" : "false");
        return *this;
    }
    [[nodiscard]] CString take() { return std::move(text_.append("\n")); }

private:
    void separate() {
        if (!first_) text_.append(",");
        first_ = false;
    }

    CString text_;
    bool first_ = true;
};

char const* kindName(Member::Kind kind) {
    switch (kind) {
        case Member::Kind::method: return "method";
        case Member::Kind::staticMethod: return "static method";
        case Member::Kind::property: return "property";
        case Member::Kind::iterator: return "iterator";
        case Member::Kind::function: return "function";
    }
    return "";
}

void writeSignature(JsonText& json, char const* key, Function const& function) {
    json.key(key).open('[');
    for (CString const& type : function.signature()) json.string(type);
    json.close(']');
}

void writeParameters(JsonText& json, Function const& function) {
    if (function.parameters().empty()) return;
    json.key("parameters").open('[');
    std::size_t index = 0;
    for (Parameter const& parameter : function.parameters()) {
        json.open('{').key("name").string(parameter.name).key("optional").boolean(function.mayOmit(index++));
        json.close('}');
    }
    json.close(']');
}

void writeMembers(JsonText& json, char const* key, MemberList const& members) {
    json.key(key).open('[');
    for (Member const& member : members) {
        forEachForm(*member.function, [&](Function const& form) {
            json.open('{').key("name").string(member.name).key("kind").string(kindName(member.kind));
            writeSignature(json, "signature", form);
            writeParameters(json, form);
            if (member.second)
                writeSignature(json, member.kind == Member::Kind::property ? "setter" : "value", *member.second);
            json.close('}');
        });
    }
    json.close(']');
}

}  // namespace

CString jsonListing(Database const& database) {
    JsonText json;
    json.open('{').key("classes").open('[');
    for (auto const& known : database.classes()) {
        json.open('{').key("name").string(known->name()).key("bases").open('[');
        for (Class::Base const& link : known->bases()) json.string(link.base->name());
        json.close(']').key("hiddenSubclasses").boolean(known->hasHiddenSubclasses());
        writeMembers(json, "members", known->members());
        json.close('}');
    }
    json.close(']').key("tables").open('[');
    for (auto const& table : database.tables()) {
        json.open('{').key("name").string(table->name);
        writeMembers(json, "functions", table->functions);
        json.close('}');
    }
    return json.close(']').close('}').take();
}

}  // namespace nxRFL::impl
