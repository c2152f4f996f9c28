// Values, children, paths, and how undo brings them back.
#include "support/documents/Object.h"

#include <algorithm>
#include <charconv>

#include "foundation/nxTXN/fields.h"
#include "foundation/urOS/FirstError.h"
#include "support/documents/Document.h"
#include "support/documents/impl/ChangeLog.h"
#include "support/documents/impl/PropertyBinding.h"

namespace nxSupport {

using nxPLST::Dictionary;
using urString::CString;
using ItemReference = Object::ItemReference;

namespace {

/// The names whose values differ, where null is no value.
ur::vector<CString> changedNames(Dictionary const* before, Dictionary const* now) {
    ur::vector<CString> names;
    if (before) {
        for (auto const& [name, value] : before->dictionary()) {
            if (!nxPLST::equal(value, now ? now->find(name) : nullptr)) names.push_back(name);
        }
    }
    if (now) {
        for (auto const& [name, value] : now->dictionary()) {
            if (!before || !before->find(name)) names.push_back(name);
        }
    }
    return names;
}

}  // namespace

Object::Extras::Extras() = default;
Object::Extras::~Extras() = default;

Object::Object(Document& document, ur::Reference<ObjectClass const> objectClass, urOS::Uuid const& id,
               ur::Reference<Dictionary> values)
    : RefCountedObject(document.history()),
      id_(id),
      class_(std::move(objectClass)),
      document_(&document),
      values_(std::move(values)) {}

Object::~Object() {
    if (document_) document_->forget(*this);
}

// ---- Values

ItemReference Object::value(CString const& name) const {
    if (values_) {
        if (auto value = values_->find(name)) return value;
    }
    PropertyDescription const* const description = class_->find(name);
    return description ? description->value.item() : nullptr;
}

bool Object::setValue(CString const& name, ItemReference value) {
    if (!isChangeable() || name.empty()) return false;
    PropertyDescription const* const description = class_->find(name);
    if (value && description && !description->faultOf(value).empty()) return false;
    bool const isSet = values_ && values_->find(name);
    if (value ? !nxPLST::equal(this->value(name), value) : isSet) store(name, value);
    return true;
}

/// Records of the history hold the dictionary that they may bring back; then a copy takes its place, which shares the
/// items.
void Object::store(CString const& name, ItemReference const& value) {
    ur::Reference<Object> const self(this);
    transact();
    if (!values_) {
        values_ = ur::make<Dictionary>();
    } else if (values_->referenceCount() > 1) {
        values_ = ur::make<Dictionary>(*values_);
    }
    if (value) {
        values_->insert(name, ur::Reference<nxPLST::Item>(const_cast<nxPLST::Item*>(value.get())));
    } else {
        values_->dictionary().erase(name);
    }
    logChange(name);
    notifyChanged(name);
}

void Object::logChange(CString const& name) noexcept {
    if (document_ && document_->log_) document_->log_->valueChanged(*this, name);
}

void Object::notifyChanged(CString const& name) {
    if (extras_) {
        auto const bound = extras_->bindings.find(name);
        if (bound != extras_->bindings.end()) bound->second->objectChanged(0);
        extras_->changed.emit(*this, name);
    }
    if (document_) document_->changed_.emit(*this, name);
}

Object* Object::target(CString const& name) const {
    urOS::Uuid id;
    return document_ && id.parse(get<CString>(name)) ? document_->find(id) : nullptr;
}

bool Object::setTarget(CString const& name, Object const* target) {
    return set(name, target ? target->id().asString() : CString());
}

ur::Reference<Property> Object::property(CString const& name) {
    if (!document_) return nullptr;
    auto& binding = extras().bindings[name];
    if (!binding) binding = ur::make<impl::PropertyBinding>(ur::vector<Object*>{this}, name, class_->find(name));
    return binding->property();
}

Object::Extras& Object::extras() {
    if (!extras_) extras_ = std::make_unique<Extras>();
    return *extras_;
}

// ---- Children

/// The list is no part of the step in which it is made: undo empties it and says so.
Object::Children::List& Object::childList() {
    if (children_) return *children_;
    nxTXN::Transaction quiet(document_->history(), {}, nxTXN::TransactionKind::none);
    children_ = std::make_unique<Children::List>(document_->history());
    quiet.commit();
    return *children_;
}

void Object::followChildren() {
    children_->insertedSignal().addCallback([this](std::size_t index, Object& child) {
        ur::Reference<Object> const self(this);
        if (document_ && document_->log_) document_->log_->inserted(*this, index, child);
        if (extras_) extras_->inserted.emit(*this, index, child);
        if (document_) document_->inserted_.emit(*this, index, child);
    });
    children_->erasedSignal().addCallback([this](std::size_t index, Object& child) {
        ur::Reference<Object> const self(this);
        if (document_ && document_->log_) document_->log_->removed(*this, index);
        if (extras_) extras_->removed.emit(*this, index, child);
        if (document_) document_->removed_.emit(*this, index, child);
    });
    children_->movedSignal().addCallback([this](std::size_t from, std::size_t to, Object& child) {
        ur::Reference<Object> const self(this);
        if (document_ && document_->log_) document_->log_->moved(*this, from, to);
        if (extras_) extras_->moved.emit(*this, from, to, child);
        if (document_) document_->moved_.emit(*this, from, to, child);
    });
}

/// Objects are often removed or moved one after the other, and what comes and goes before them shifts all alike.
std::size_t Object::index() const noexcept {
    if (!parent_) return 0;
    Children const siblings = parent_->children();
    for (std::int32_t const shift : {parent_->shift_, parent_->shift_ - 1, parent_->shift_ + 1, 0}) {
        std::int64_t const index = std::int64_t(formerIndex_) + shift;
        if (index < 0 || siblings.at(static_cast<std::size_t>(index)) != this) continue;
        parent_->shift_ = shift;
        return static_cast<std::size_t>(index);
    }
    std::size_t const index = siblings.indexOf(*this).value_or(0);
    parent_->shift_ = static_cast<std::int32_t>(static_cast<std::int64_t>(index) - formerIndex_);
    return index;
}

bool Object::isWithin(Object const& other) const noexcept {
    for (Object const* object = this; object; object = object->parent_) {
        if (object == &other) return true;
    }
    return false;
}

bool Object::isChangeable() const noexcept { return document_ && isTxnExtant(); }

bool Object::areChildrenChangeable() const noexcept {
    return isChangeable() && isTxnChangeable() && (!children_ || children_->isTxnChangeable());
}

bool Object::isInTree() const noexcept { return document_ && isWithin(document_->root()); }

/// Trees may be deep, so the walk up is only for a child with children.
bool Object::mayHold(Object const& child) const noexcept {
    if (!areChildrenChangeable() || !child.isChangeable() || !child.isTxnChangeable()) return false;
    if (child.document_ != document_) return false;
    if (&child == &document_->root() || !class_->mayContain(*child.class_)) return false;
    return child.children().empty() ? this != &child : !isWithin(child);
}

bool Object::insert(std::size_t index, ur::Reference<Object> const& child) {
    if (!child || child->parent_ || index > children().size() || !mayHold(*child)) return false;
    put(index, child);
    return true;
}

bool Object::remove(Object& child) {
    if (child.parent_ != this || !areChildrenChangeable() || !child.isTxnChangeable()) return false;
    take(child.index(), child);
    return true;
}

bool Object::moveTo(Object& parent, std::size_t index) {
    if (!parent_ || !parent_->areChildrenChangeable() || !parent.mayHold(*this)) return false;
    std::size_t const size = parent.children().size();
    if (index > (&parent == parent_ ? size - 1 : size)) return false;
    ur::Reference<Object> const self(this);
    ur::Reference<Object> const next(&parent);
    std::size_t const from = this->index();
    if (&parent == parent_) {
        formerIndex_ = static_cast<std::uint32_t>(index);
        return parent.childList().move(from, index);
    }
    urOS::FirstError errors;
    bool isInserted = false;
    errors.guard([&] { parent_->take(from, *this); });
    if (!parent_) errors.guard([&] { isInserted = parent.insert(std::min(index, parent.children().size()), self); });
    errors.rethrow();
    return isInserted;  // a listener may have come first
}

void Object::put(std::size_t index, ur::Reference<Object> const& child) {
    ur::Reference<Object> const self(this);
    ur::Reference<Object> const held(child.get());  // a listener may let go of the caller's
    bool const isFirst = !children_;
    Children::List& list = childList();
    if (isFirst) followChildren();
    child->transact();
    child->parent_ = this;
    child->formerIndex_ = static_cast<std::uint32_t>(index);
    try {
        list.insert(index, child);
    } catch (...) {
        if (child->parent_ == this && !children().indexOf(*child)) child->parent_ = nullptr;
        throw;
    }
}

void Object::take(std::size_t index, Object& child) {
    ur::Reference<Object> const self(this);
    ur::Reference<Object> const held(&child);
    child.transact();
    child.parent_ = nullptr;
    try {
        children_->erase(index);
    } catch (...) {
        if (children().at(index) == &child) child.parent_ = this;
        throw;
    }
}

// ---- Paths

Object* Object::find(std::string_view path) {
    Object* object = this;
    if (path.starts_with('/')) {
        while (object->parent_) object = object->parent_;
    }
    while (object && !path.empty()) {
        std::string_view const step = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(path.size(), step.size() + 1));
        if (step.empty()) continue;
        std::size_t index = 0;
        auto const [end, error] = std::from_chars(step.data() + 1, step.data() + step.size(), index);
        if (step.starts_with('[') && error == std::errc() && std::string_view(end, step.data() + step.size()) == "]") {
            object = object->children().at(index);
            continue;
        }
        Children const all = object->children();
        auto const named = std::find_if(all.begin(), all.end(), [&](Object& child) { return child.name() == step; });
        object = named == all.end() ? nullptr : &*named;
    }
    return object;
}

CString Object::path() const {
    ur::vector<CString> steps;
    for (Object const* object = this; object->parent_; object = object->parent_)
        steps.push_back(object->stepFromParent());
    CString path;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) path.append('/').append(*step);
    return path.empty() ? CString("/") : path;
}

CString Object::stepFromParent() const {
    CString mine = name();
    if (!mine.empty() && mine.find('/') == CString::npos && mine[0] != '[') {
        Children const all = parent_->children();
        auto const first = std::find_if(all.begin(), all.end(), [&](Object& child) { return child.name() == mine; });
        if (first != all.end() && &*first == this) return mine;
    }
    return CString::format("[%zu]", index());
}

// ---- Undo

nxTXN::FieldHandlers const Object::valuesHandlers = {
    [](nxTXN::Writer& writer, void const* field) { writer.writePtr(static_cast<Object const*>(field)->values_.get()); },
    [](nxTXN::Reader& reader, void* field) {
        auto& object = *static_cast<Object*>(field);
        object.former_ = std::move(object.values_);
        object.values_.reset(static_cast<Dictionary*>(reader.readPtr()));
    },
    [](nxTXN::Clear&, void* field) { static_cast<Object*>(field)->values_.reset(); }};

/// The list records itself. Children that others hold must not lead to a parent that is gone.
nxTXN::FieldHandlers const Object::childrenHandlers = {[](nxTXN::Writer&, void const*) {}, [](nxTXN::Reader&, void*) {},
                                                       [](nxTXN::Clear& cleared, void* field) {
                                                           auto& object = *static_cast<Object*>(field);
                                                           if (!object.children_) return;
                                                           for (Object& child : *object.children_) {
                                                               if (child.parent_ == &object) child.parent_ = nullptr;
                                                           }
                                                           clear(cleared, *object.children_);
                                                       }};

void Object::onTransact(nxTXN::Serializer& serializer) {
    serializer.beginObject(this, nullptr);
    RefCountedObject::onTransact(serializer);
    serializer.field(parent_);
    serializer.field(this, valuesHandlers);
    serializer.field(this, childrenHandlers);
    serializer.endObject(this);
}

void Object::onTxnModified() {
    RefCountedObject::onTxnModified();
    auto const before = std::move(former_);
    auto const now = values_;
    if (before == now) return;
    ur::vector<CString> names;
    try {
        names = changedNames(before.get(), now.get());
    } catch (...) {
        if (document_ && document_->log_) document_->log_->forgetAll();
        throw;
    }
    for (CString const& name : names) logChange(name);
    urOS::FirstError errors;
    for (CString const& name : names) errors.guard([&] { notifyChanged(name); });
    errors.rethrow();
}

void Object::onTxnExtant() {
    RefCountedObject::onTxnExtant();
    if (!isTxnExtant()) former_.reset();
}

void Object::onTxnGetSize(nxTXN::ObjectSize& size) const {
    size.raiseBase(sizeof(Object));
    RefCountedObject::onTxnGetSize(size);
    if (values_)
        size.add(sizeof(Dictionary) + static_cast<std::size_t>(values_->size()) * sizeof(Dictionary::Map::value_type));
}

}  // namespace nxSupport
