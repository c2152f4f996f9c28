// Reads descriptions from the tables of scripts.
#include "tools/nxhost/DescribedClasses.h"

#include <algorithm>
#include <cmath>

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Reader.h"
#include "foundation/nxRFL/Writer.h"
#include "foundation/urString/NearestName.h"
#include "plst/casts.h"
#include "plst/convert.h"
#include "support/services/Timeline.h"

namespace nxhost {

using nxSupport::ClassDescription;
using nxSupport::PropertyDescription;
using urString::CString;
using ItemReference = ur::Reference<nxPLST::Item const>;

namespace {

constexpr std::size_t bytesOfClass = 2048;
constexpr int mostBases = 32;  // each class holds the next, and some walks are recursive

template <class T>
constexpr char const* wordFor = "a number";
template <>
constexpr char const* wordFor<CString> = "a text";
template <>
constexpr char const* wordFor<bool> = "a boolean";

/// Reads the members of one table.
class Members {
public:
    /// `about` begins the messages: "class "Circle"".
    Members(ItemReference const& table, CString about) : table_(asDictionary(table)), about_(std::move(about)) {
        if (!table_) fail("must be a table with names");
    }

    void fail(CString const& what) const { throw nxRFL::Exception(CString(about_).append(" ").append(what)); }
    void setAbout(CString about) { about_ = std::move(about); }
    [[nodiscard]] CString const& about() const noexcept { return about_; }

    ItemReference item(char const* name) {
        asked_.emplace_back(name);
        return table_->find(name);
    }
    template <class T>
    void read(char const* name, T& value) {
        ItemReference const found = item(name);
        if (!found) return;
        if (!nxPLST::hasShape<T>(found)) fail(CString("must have ").append(wordFor<T>).append(" as ").append(name));
        nxPLST::convert(value, found);
    }
    void read(char const* name, std::optional<double>& value) {
        if (table_->find(name)) value = 0;
        double number = 0;
        read(name, number);
        if (value) value = number;
    }
    /// Calls `visit` for each element of an array.
    template <class Visit>
    void forEach(char const* name, Visit visit) {
        ItemReference const found = item(name);
        if (!found) return;
        auto const elements = asArray(found);
        auto const empty = asDictionary(found);  // an empty table may be either
        if (!elements && !(empty && empty->empty())) fail(CString("must have an array as ").append(name));
        if (!elements) return;
        for (auto const& element : elements->array()) visit(ItemReference(element));
    }
    /// Refuses members that were not asked for.
    void finish() const {
        for (auto const& [name, value] : table_->dictionary()) {
            if (std::ranges::find(asked_, name) != asked_.end()) continue;
            urString::NearestName nearest(name.view());
            for (CString const& known : asked_) nearest.offer(known.view());
            fail(CString("has the unknown member \"").append(name).append('"').append(nearest.question()));
        }
    }

private:
    ur::Reference<nxPLST::Dictionary const> table_;
    CString about_;
    ur::vector<CString> asked_;
};

CString nameIn(Members& members) {
    CString name;
    members.read("name", name);
    if (name.size() > longestName) members.fail("has a name of more than 256 bytes");
    return name;
}

nxPLST::Value valueOf(ItemReference const& item) {
    return ur::Reference<nxPLST::Item>(const_cast<nxPLST::Item*>(item.get()));  // nobody changes it
}

PropertyDescription propertyFrom(ItemReference const& table, CString const& about) {
    Members members(table, CString(about).append(", a property"));
    PropertyDescription result;
    result.name = nameIn(members);
    members.setAbout(CString(about).append(", property \"").append(result.name).append('"'));
    result.value = valueOf(members.item("value"));
    members.read("label", result.label);
    members.read("description", result.description);
    members.read("group", result.group);
    members.read("unit", result.unit);
    members.read("control", result.control);
    members.read("minimum", result.minimum);
    members.read("maximum", result.maximum);
    members.read("step", result.step);
    members.forEach("choices", [&](ItemReference const& choice) { result.choices.push_back(valueOf(choice)); });
    members.read("readOnly", result.readOnly);
    members.read("hidden", result.hidden);
    members.read("reference", result.reference);
    members.finish();
    return result;
}

unsigned versionIn(Members& members) {
    double version = 1;
    members.read("version", version);
    if (!(version >= 1 && version <= 1e9) || std::floor(version) != version)
        members.fail("must have a whole number above 0 as version");
    return static_cast<unsigned>(version);
}

ClassDescription classFrom(ItemReference const& values) {
    Members members(values, "the description of a class");
    ClassDescription result;
    result.name = nameIn(members);
    members.setAbout(CString("class \"").append(result.name).append('"'));
    members.read("base", result.base);
    result.version = versionIn(members);
    members.forEach("properties", [&](ItemReference const& property) {
        result.properties.push_back(propertyFrom(property, members.about()));
    });
    members.forEach("children", [&](ItemReference const& child) {
        auto const name = asString(child);
        if (!name) members.fail("must have names of classes as children");
        result.children.push_back(name->value());
    });
    if (members.item("upgrade")) members.fail("must have a function as upgrade");
    members.finish();
    return result;
}

/// The bytes that a class derived from one with this property has for it.
std::size_t bytesInherited(PropertyDescription const& property) {
    std::size_t bytes = 2 * sizeof property + property.choices.size() * sizeof(nxPLST::Value);
    for (CString const* const text :
         {&property.name, &property.label, &property.description, &property.group, &property.unit}) {
        bytes += text->size();
    }
    return bytes;
}

/// Counts a call while it runs.
class Counted {
public:
    explicit Counted(int& count) noexcept : count_(count) { ++count_; }
    Counted(Counted const&) = delete;
    Counted& operator=(Counted const&) = delete;
    ~Counted() { --count_; }

private:
    int& count_;
};

/// The function's result for the values of that version; null, with the reason, if it is no table of values.
ur::Reference<nxPLST::Dictionary const> upgraded(nxRFL::Function const& function, nxPLST::Dictionary& values,
                                                 unsigned version, CString& why) {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    write(writer, nxSupport::ScriptValue{ItemReference(&values)});
    writer.writeUnsigned(version);
    function.call(arguments, results);
    why = "returns nothing";
    if (results.empty()) return nullptr;
    why = "returns no table with names";
    nxSupport::ScriptValue result;
    try {
        nxRFL::Reader reader = nxRFL::Reader::ofResults(results, function);
        read(reader, result);
    } catch (nxRFL::Exception const& error) {
        why = CString("returns no values: ").append(error.message());
        return nullptr;
    }
    auto const array = asArray(result.item);
    if (array && array->empty()) return ur::make<nxPLST::Dictionary>();  // an empty table may be either
    return asDictionary(result.item);
}

}  // namespace

void read(nxRFL::Reader& reader, ClassTable& table) {
    table = {};
    if (reader.kind() != nxRFL::Kind::dictionary) return read(reader, table.values);
    auto const members = ur::make<nxPLST::Dictionary>();
    table.values = {members, ur::Charge(reader.account(), 0)};
    for (unsigned left = reader.startDictionary(); left > 0; --left) {
        CString const name = reader.readText();
        if (name == "upgrade" && reader.kind() == nxRFL::Kind::function) {
            table.upgrade = reader.readFunction();
            continue;
        }
        nxSupport::ScriptValue member;
        read(reader, member);
        table.values.charge.add(name.size() + member.charge.bytes());
        members->insert(name, ur::Reference<nxPLST::Item>(const_cast<nxPLST::Item*>(member.item.get())));
    }
    reader.endDictionary();
}

ClassDescription::Upgrade DescribedClasses::upgradeBy(ur::Reference<nxRFL::Function> function, CString name) {
    if (!function) return {};
    return
        [this, function = std::move(function), name = std::move(name)](nxPLST::Dictionary& values, unsigned version) {
            Counted const counted(upgrading_);
            nxSupport::ScriptCallScope const scope("upgrade");
            CString why;
            auto const result = upgraded(*function, values, version, why);
            if (!result) throw nxRFL::Exception(CString("the upgrade of \"").append(name).append("\" ").append(why));
            values.dictionary() = result->dictionary();
        };
}

void DescribedClasses::add(ClassTable const& table) {
    ItemReference const& description = table.values.item;
    ClassDescription added = classFrom(description);
    added.upgrade = upgradeBy(table.upgrade, added.name);
    auto const base = catalog_.find(added.base);
    int bases = 0;
    for (auto const* each = base.get(); each; each = each->base()) ++bases;
    if (bases > mostBases)
        throw nxRFL::Exception(CString("class \"").append(added.name).append("\" has over 32 bases"));
    CString const name = added.name;
    CString hint = question(added.base);
    for (CString const& child : added.children) {
        if (hint.empty() && child != name) hint = question(child);
    }
    std::size_t const before = charge_.bytes();
    chargeFor(*description, base.get());
    names_.push_back(name);
    urUtil::Error const error = catalog_.add(std::move(added));
    if (error.ok()) return;
    names_.pop_back();
    charge_.set(before);
    throw nxRFL::Exception(CString(error.message()).append(hint));
}

void DescribedClasses::chargeFor(nxPLST::Item const& description, nxSupport::ObjectClass const* base) {
    std::size_t bytes = bytesOfClass + 4 * nxSupport::bytesOf(description);
    if (base) {
        for (PropertyDescription const& property : base->properties()) bytes += bytesInherited(property);
    }
    charge_.add(bytes);
}

ur::Reference<nxSupport::ObjectClass const> DescribedClasses::get(CString const& name) const {
    if (auto found = catalog_.find(name)) return found;
    throw nxRFL::Exception(CString("there is no class \"").append(name).append('"').append(question(name)));
}

CString DescribedClasses::question(CString const& name) const {
    if (name.empty() || catalog_.find(name)) return {};
    urString::NearestName nearest(name.view());
    for (CString const& known : names_) nearest.offer(known.view());
    return nearest.question();
}

}  // namespace nxhost
