// Reads trees of any depth and any origin.
#include "support/documents/impl/ObjectReader.h"

#include <cmath>
#include <exception>
#include <limits>
#include <new>

#include "foundation/urOS/FirstError.h"
#include "plst/Expansion.h"
#include "support/documents/impl/ChangeLog.h"
#include "support/documents/impl/format.h"

namespace nxSupport::impl {

using nxPLST::Array;
using nxPLST::Dictionary;
using nxPLST::Item;
using ur::Reference;
using urString::CString;

namespace {

/// Values of hostile packet files may share items so often that comparing or copying them would take for ever.
constexpr std::uint64_t mostExpandedItems = std::uint64_t(1) << 26;
/// Each class that only the file has keeps the versions that the file names.
constexpr std::size_t mostVersions = std::size_t(1) << 20;
constexpr std::size_t objectsBetweenReports = 1024;

CString quoted(CString const& text) { return CString("\"").append(text).append('"'); }

CString textUnder(Dictionary const& item, char const* key) { return nxPLST::valueOf<CString>(item.find(key)); }

}  // namespace

bool ObjectReader::read(Reference<Item> const& file) {
    auto const head = nxPLST::asDictionary(file);
    if (!head) return failFile("is no document");
    nxPLST::Expansion const expansion = nxPLST::expansionOf(file.get());
    if (expansion.shares && expansion.items > mostExpandedItems) return failFile("shares too many values");
    if (!readHead(*head)) return false;
    nxTXN::Transaction quiet(document_.history(), {}, nxTXN::TransactionKind::none);
    bool const isRead = readTrees();
    if (isRead) leadReferencesToCopies();
    quiet.commit();
    return isRead;
}

bool ObjectReader::readHead(Dictionary const& file) {
    for (auto const& [key, value] : file.dictionary()) {
        if (key != form::format && key != form::version && key != form::classes && key != form::objects)
            return failFile("has the unknown member " + quoted(key));
    }
    if (textUnder(file, form::format) != form::formatName) return failFile("is no document", form::format);
    auto const version = nxPLST::valueOf<double>(file.find(form::version));
    if (version > form::presentVersion) return failFile("is of a newer version of the format", form::version);
    if (version != form::presentVersion) return failFile("has no version of the format", form::version);
    if (!readVersions(file.find(form::classes), versions_))
        return failFile("has versions of classes that are no whole numbers above 0", form::classes);
    auto const objects = nxPLST::asArray(file.find(form::objects));
    if (!objects) return failFile("has no objects", form::objects);
    enterArray(nullptr, objects);
    return true;
}

void ObjectReader::enterArray(Object* parent, Reference<Array const> const& items) {
    std::size_t const size = items->array().size();
    if (identities_ == Identities::kept && size > index_.size()) index_.reserve(index_.size() + size);
    if (identities_ == Identities::fresh && size > copies_.size()) copies_.reserve(copies_.size() + size);
    open_.push_back({parent, items, 0});
}

bool ObjectReader::readVersions(Reference<Item> const& item, ObjectClass::Versions& versions) {
    auto const table = nxPLST::asDictionary(item);
    if (!table) return !item;
    for (auto const& [name, entry] : table->dictionary()) {
        auto const version = nxPLST::valueOf<double>(entry);
        if (!(version >= 1 && version <= std::numeric_limits<int>::max()) || std::floor(version) != version)
            return false;
        versions[name] = static_cast<unsigned>(version);
    }
    return true;
}

bool ObjectReader::readTrees() {
    while (!open_.empty()) {
        Open& innermost = open_.back();
        if (innermost.next == innermost.items->array().size()) {
            open_.pop_back();
            continue;
        }
        current_ = innermost.items->array()[innermost.next++].get();
        if (!readObject(current_)) return false;
        if (made_.size() % objectsBetweenReports == 0 && !report()) return false;
    }
    return true;
}

bool ObjectReader::readObject(Item const* item) {
    if (!item || item->type() != nxPLST::DictionaryType) return fail("is no dictionary");
    auto const& members = static_cast<Dictionary const&>(*item);
    for (auto const& [key, value] : members.dictionary()) {
        if (key != form::className && key != form::id && key != form::values && key != form::versions &&
            key != form::children) {
            return fail("has the unknown member " + quoted(key));
        }
    }
    KnownClass const* const known = readClass(members);
    if (!known) return false;
    Object* const parent = open_.back().parent;
    if (parent && !parent->objectClass().mayContain(*known->objectClass)) {
        return fail(CString("is a ")
                        .append(known->objectClass->name())
                        .append(", which a ")
                        .append(parent->objectClass().name())
                        .append(" may not contain"),
                    form::className);
    }
    Identity identity;
    if (!readId(members, identity)) return false;
    auto const valuesItem = members.find(form::values);
    auto values = nxPLST::asDictionary(valuesItem);
    if (valuesItem && !values) return fail("has values that are no dictionary", form::values);
    if (values && !readValues(*known, values)) return false;
    auto const childrenItem = members.find(form::children);
    Reference<Array const> const children = nxPLST::asArray(childrenItem);
    if (childrenItem && !children) return fail("has children that are no array", form::children);
    Object& object = make(*known, identity, std::move(values));
    if (children && !children->empty()) enterArray(&object, children);
    return true;
}

ObjectReader::KnownClass const* ObjectReader::readClass(Dictionary const& item) {
    CString const name = textUnder(item, form::className);
    if (name.empty()) return fail("has no class", form::className), nullptr;
    ObjectClass::Versions own;
    if (!readVersions(item.find(form::versions), own))
        return fail("has versions that are no whole numbers above 0", form::versions), nullptr;
    CString key = name;
    for (auto const& [part, version] : own) key.append('\0').append(part).append(CString::format("=%u", version));
    auto const known = classes_.find(key);
    return known == classes_.end() ? addClass(key, name, own) : &known->second;
}

ObjectReader::KnownClass const* ObjectReader::addClass(CString const& key, CString const& name,
                                                       ObjectClass::Versions const& own) {
    versionCount_ += versions_.size() + own.size() + 1;
    if (versionCount_ > mostVersions) return fail("is one of too many versions of classes", form::className), nullptr;
    ObjectClass::Versions versions = versions_;
    for (auto const& [part, version] : own) versions[part] = version;
    auto objectClass = document_.catalog().classFor(name, versions);
    bool const needsUpgrade = objectClass->isCurrent() && objectClass->hasChangedSince(versions);
    KnownClass& added = classes_[key];
    added = {std::move(objectClass), needsUpgrade, std::move(versions)};
    return &added;
}

bool ObjectReader::readId(Dictionary const& item, Identity& identity) {
    urOS::Uuid id;
    if (!id.parse(textUnder(item, form::id)) || id.isNil()) return fail("has no identity", form::id);
    bool isNew = false;
    if (identities_ == Identities::kept) {
        auto const entered = index_.try_emplace(id);
        isNew = entered.second;
        identity = {id, &entered.first->second};
    } else {
        auto const entered = copies_.try_emplace(id);
        isNew = entered.second;
        if (isNew) entered.first->second.generate();
        identity = {entered.first->second, nullptr};
    }
    return isNew || fail("has the identity of another object", form::id);
}

bool ObjectReader::readValues(KnownClass const& known, Reference<Dictionary>& values) {
    if (known.needsUpgrade) {
        values = ur::make<Dictionary>(*values);
        try {
            known.objectClass->upgrade(*values, known.versions);
        } catch (std::bad_alloc const&) {
            throw;
        } catch (std::exception const& error) {
            return fail(CString("cannot be brought to the present version: ").append(error.what()), form::values);
        }
    }
    return !known.objectClass->isCurrent() || checkValues(*known.objectClass, *values);
}

bool ObjectReader::checkValues(ObjectClass const& objectClass, Dictionary const& values) {
    for (auto const& [name, value] : values.dictionary()) {
        PropertyDescription const* const description = objectClass.find(name);
        if (!description) continue;
        if (CString const fault = description->faultOf(value); !fault.empty()) return fail(fault, form::values, name);
    }
    return true;
}

Object& ObjectReader::make(KnownClass const& known, Identity const& identity, Reference<Dictionary> values) {
    made_.push_back(nullptr);
    Reference<Object> const object(new Object(document_, known.objectClass, identity.id, std::move(values)));
    made_.back() = object.get();
    if (identity.place) *identity.place = object.get();
    Object* const parent = open_.back().parent;
    if (!parent) {
        tops_.push_back(object);
        return *object;
    }
    object->parent_ = parent;
    object->formerIndex_ = static_cast<std::uint32_t>(parent->children().size());
    static_cast<void>(parent->childList().append(object));
    return *object;
}

bool ObjectReader::report() {
    if (!progress_) return true;
    double done = 0;
    double part = 1;
    for (Open const& open : open_) {
        auto const size = static_cast<double>(open.items->array().size());
        if (open.next > 0) done += part * static_cast<double>(open.next - 1) / size;
        part /= size;
    }
    isCancelled_ = !progress_(done);
    return !isCancelled_ || failFile("was cancelled");
}

// ---- Copies

/// A text that is the identity of an object that was copied too becomes that of its copy, also in an array.
void ObjectReader::leadReferencesToCopies() {
    if (copies_.empty()) return;
    auto const copyOf = [&](Item const* item) -> urOS::Uuid const* {
        urOS::Uuid id;
        if (!item || item->type() != nxPLST::StringType) return nullptr;
        if (!id.parse(static_cast<nxPLST::String const&>(*item).value())) return nullptr;
        auto const found = copies_.find(id);
        return found == copies_.end() ? nullptr : &found->second;
    };
    auto const led = [&](Reference<Item> const& value) -> Reference<Item> {
        if (auto const* const copy = copyOf(value.get())) return ur::make<nxPLST::String>(copy->asString());
        if (!value || value->type() != nxPLST::ArrayType) return value;
        auto array = Reference(static_cast<Array*>(value.get()));
        for (std::size_t i = 0; i < array->array().size(); ++i) {
            auto const* const copy = copyOf(array->array()[i].get());
            if (!copy) continue;
            if (array.get() == value.get()) array = ur::make<Array>(*array);
            array->array()[i] = ur::make<nxPLST::String>(copy->asString());
        }
        return array;
    };
    for (Object* const object : made_) {
        if (!object->values_) continue;
        Reference<Dictionary> own;
        for (auto const& [name, value] : object->values_->dictionary()) {
            auto const next = led(value);
            if (next == value) continue;
            if (!own) own = ur::make<Dictionary>(*object->values_);
            own->insert(name, next);
        }
        if (own) object->values_ = own;
    }
}

// ---- Results

bool ObjectReader::checkRoot() {
    if (tops_.size() != 1) return failFile("does not have exactly one object at its top", form::objects);
    ObjectClass const& mine = document_.root().objectClass();
    ObjectClass const& its = tops_.front()->objectClass();
    if (!mine.isKnown() || its.isA(mine.name())) return true;
    return failFile(CString("is a ").append(its.name()).append(", expected a ").append(mine.name()), form::objects);
}

bool ObjectReader::install(Origin origin) {
    for (Object* const object : made_) {
        if (object->children_) object->followChildren();
    }
    Reference<Object> root = tops_.front();
    auto const exchange = [&](Document* ofFormerObjects) {
        document_.root_.swap(root);
        document_.index_.swap(index_);
        for (auto const& [id, former] : ofFormerObjects ? document_.index_ : index_)
            former->document_ = ofFormerObjects;
    };
    exchange(nullptr);
    urOS::FirstError errors;
    bool isCleared = true;
    errors.guard([&] { isCleared = document_.history_.clear(); });
    if (!isCleared) {
        exchange(&document_);
        return false;
    }
    index_.clear();
    document_.selection_.clear();
    document_.setUnmodified();
    document_.isRecovered_ = origin == Origin::recovered;
    if (document_.log_) document_.log_->forgetAll();
    errors.guard([&] { document_.replaced_.emit(); });
    errors.rethrow();
    return true;
}

void ObjectReader::enter() {
    for (Object* const object : made_) {
        if (object->children_) object->followChildren();
    }
    document_.index_.reserve(document_.index_.size() + made_.size());
    for (Object* const object : made_) document_.index_[object->id()] = object;
}

// ---- Faults

bool ObjectReader::failFile(CString const& what, char const* key) {
    fault_ = what;
    if (key) faultPath_ = {std::string(key)};
    return false;
}

bool ObjectReader::fail(CString const& what, char const* key, CString const& property) {
    fault_ = CString("object ").append(quoted(objectText()));
    if (!property.empty()) fault_.append(", property ").append(quoted(property)).append(":");
    fault_.append(' ').append(what);
    faultPath_.clear();
    for (Open const& open : open_) {
        faultPath_.emplace_back(std::string(open.parent ? form::children : form::objects));
        faultPath_.emplace_back(static_cast<long>(open.next - 1));
    }
    if (key) faultPath_.emplace_back(std::string(key));
    if (!property.empty()) faultPath_.emplace_back(std::string(property));
    return false;
}

/// The path that the object would have, with its index where it has no name.
CString ObjectReader::objectText() const {
    Open const& innermost = open_.back();
    CString path = innermost.parent ? innermost.parent->path() : CString();
    if (!innermost.parent && open_.front().items->size() == 1) return "/";
    if (!path.endsWith("/")) path.append('/');
    CString name;
    if (current_ && current_->type() == nxPLST::DictionaryType) {
        auto const values = nxPLST::asDictionary(static_cast<Dictionary const&>(*current_).find(form::values));
        if (values) name = textUnder(*values, "name");
    }
    return path.append(name.empty() ? CString::format("[%zu]", innermost.next - 1) : name);
}

}  // namespace nxSupport::impl
