// Counts objects, values and records.
#include "tools/nxhost/DocumentCharges.h"

#include <algorithm>
#include <set>

namespace nxhost {

namespace {

constexpr std::size_t bytesOfName = 2048;
constexpr std::size_t bytesOfCallable = 512;
constexpr std::size_t bytesOfObject = 512;  // with its list of children and its place in the index
constexpr std::size_t bytesOfEntry = 64;    // of a value in its object
constexpr std::size_t bytesOfStep = 256;    // memory that the history does not count, such as the names of steps
constexpr std::size_t growthOfFile = 4;     // from the bytes of a file to those of its objects
constexpr std::size_t bytesOfItem = 64;
constexpr std::size_t bytesOfCopy = 512;           // of the items of an object
constexpr std::size_t bytesOfForeignClass = 2048;  // of a class that only a file has, without its versions
constexpr std::size_t bytesOfVersion = 64;         // of such a class, besides the name

template <class Versions>
std::size_t bytesOfVersions(Versions const& versions) {
    std::size_t bytes = 0;
    for (auto const& [name, version] : versions) bytes += bytesOfVersion + name.size();
    return bytes;
}

std::size_t bytesOfVersionsIn(nxPLST::Dictionary const& item, char const* key) {
    auto const versions = nxPLST::asDictionary(item.find(key));
    return versions ? bytesOfVersions(versions->dictionary()) : 0;
}

/// At most that of the classes which are made for the objects of a copy: one for each name of a class, with all
/// versions of the copy, and one for each object with versions of its own.
std::size_t bytesOfClasses(nxPLST::Dictionary const& copied) {
    std::size_t const bytesOfEach = bytesOfForeignClass + bytesOfVersionsIn(copied, "classes");
    std::size_t bytes = 0;
    std::set<urString::CString> names;
    ur::vector<ur::Reference<nxPLST::Array>> left = {nxPLST::asArray(copied.find("objects"))};
    while (!left.empty()) {
        auto const objects = left.back();
        left.pop_back();
        if (!objects) continue;
        for (auto const& item : objects->array()) {
            auto const object = nxPLST::asDictionary(item);
            if (!object) continue;
            if (auto const name = nxPLST::asString(object->find("class"))) names.insert(name->value());
            if (object->find("versions")) bytes += bytesOfEach + bytesOfVersionsIn(*object, "versions");
            left.push_back(nxPLST::asArray(object->find("children")));
        }
    }
    return bytes + names.size() * bytesOfEach;
}

}  // namespace

void DocumentCharges::chargeTo(std::shared_ptr<ur::Account> const& account) {
    if (names_) return;
    freeObjects_ = document_.objectCount();
    values_.chargeTo(account);
    for (ur::Charge* const charge : {&names_, &selected_, &objects_, &history_}) *charge = ur::Charge(account, 0);
}

void DocumentCharges::addValue(KeptValues::ItemReference const& value, urString::CString const& name,
                               std::size_t objects) {
    values_.add(value, objects * (bytesOfEntry + name.size()));
}

/// When the account refuses, it has collected garbage first; that may have freed objects.
void DocumentCharges::addObjects(std::size_t count) {
    settle();
    try {
        objects_.add(count * bytesOfObject);
    } catch (ur::BudgetSpent const&) {
        settle();
        objects_.add(count * bytesOfObject);
    }
}

void DocumentCharges::addName() { names_.add(bytesOfName); }

void DocumentCharges::addCallable(urString::CString const& name) { names_.add(bytesOfCallable + name.size()); }

ur::Charge DocumentCharges::callable() const { return {names_.account(), bytesOfCallable}; }

ur::Charge DocumentCharges::room(std::uint64_t bytesOfFile) const {
    return {names_.account(), static_cast<std::size_t>(bytesOfFile) * growthOfFile};
}

/// At most one item begins at each bracket and behind each comma, and at most one object at each brace.
ur::Charge DocumentCharges::roomToPaste(std::string_view text) const {
    std::size_t bytes = text.size() + bytesOfItem;
    for (char const character : text) {
        if (character == ',' || character == '[' || character == '{') bytes += bytesOfItem;
        if (character == '{') bytes += bytesOfObject;
    }
    return {names_.account(), bytes};
}

ur::Charge DocumentCharges::roomForClasses(ur::Reference<nxPLST::Item> const& copied) const {
    auto const head = nxPLST::asDictionary(copied);
    return {names_.account(), head ? bytesOfClasses(*head) : 0};
}

ur::Charge DocumentCharges::roomToCopy(std::size_t objects) const { return {names_.account(), objects * bytesOfCopy}; }

void DocumentCharges::setSelected(std::size_t objects) {
    selected_ = ur::Charge(names_.account(), objects * sizeof(urOS::Uuid));
}

void DocumentCharges::addOpened() {
    freeObjects_ = 0;
    settle();
    addValuesBelow({&document_.root()});
}

void DocumentCharges::addValuesOf(std::span<ur::Reference<nxSupport::Object> const> objects) {
    ur::vector<nxSupport::Object const*> left;
    for (auto const& object : objects) left.push_back(object.get());
    addValuesBelow(std::move(left));
}

void DocumentCharges::addValuesBelow(ur::vector<nxSupport::Object const*> left) {
    while (!left.empty()) {
        nxSupport::Object const& object = *left.back();
        left.pop_back();
        for (nxSupport::Object const& child : object.children()) left.push_back(&child);
        nxSupport::ObjectClass const& objectClass = object.objectClass();
        if (!objectClass.isCurrent()) {
            values_.addSharedAnyway(ur::Reference<ur::ReferenceCount const>(&objectClass),
                                    bytesOfForeignClass + bytesOfVersions(objectClass.versions()));
        }
        auto const values = object.values();
        if (!values) continue;
        for (auto const& [name, value] : values->dictionary()) values_.addAnyway(value, bytesOfEntry + name.size());
    }
}

void DocumentCharges::settle() noexcept {
    std::size_t const objects = document_.objectCount();
    objects_.set((objects - std::min(objects, freeObjects_)) * bytesOfObject);
    auto const& history = document_.history();
    history_.set(history.historyBytes() + (history.undoCount() + history.redoCount()) * bytesOfStep);
    values_.settle();
}

}  // namespace nxhost
