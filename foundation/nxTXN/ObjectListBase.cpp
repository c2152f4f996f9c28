// Changes and restores lists, and emits their signals.
#include "foundation/nxTXN/ObjectListBase.h"

#include <utility>
#include <vector>

#include "foundation/nxTXN/Serializer.h"
#include "foundation/nxTXN/impl/Lifetimes.h"
#include "foundation/nxTXN/impl/ListVersion.h"
#include "foundation/ur/Sequence.h"
#include "foundation/urOS/FirstError.h"

namespace nxTXN {
namespace impl {

/// The objects, the version of the list that they represent, and the changes not signalled yet.
class ListState {
public:
    using Objects = ur::Sequence<ur::Reference<RefCountedObject>>;
    struct News {
        ListChange change;
        ur::Reference<RefCountedObject> object;
    };

    ListState(ObjectListBase& list, Objects objects) : list_(&list), objects_(std::move(objects)) {}

    [[nodiscard]] ObjectListBase* list() const noexcept { return list_; }
    void setGone() noexcept {
        list_ = nullptr;
        news_.clear();
        delivered_ = 0;
    }
    [[nodiscard]] Objects& objects() noexcept { return objects_; }
    [[nodiscard]] ListVersion const& version() const noexcept { return *version_; }

    /// Changes nothing when it throws.
    void change(ListChange const& change, RefCountedObject& object);
    /// Changes the list to another of its versions.
    void turnTo(ListVersion& version);

    template <class Tell>
    void deliver(Tell tell);

private:
    static constexpr std::size_t mostSpareNews = 64;

    void apply(ListChange const& change, RefCountedObject& object);
    void turnBack();

    ObjectListBase* list_;  ///< null once the list is destroyed
    Objects objects_;
    ur::Reference<ListVersion> version_{new ListVersion};
    std::vector<News> news_;
    std::size_t delivered_ = 0;  ///< of `news_`
    bool delivering_ = false;
};

void ListState::apply(ListChange const& change, RefCountedObject& object) {
    news_.push_back({change, &object});
    try {
        switch (change.kind) {
            case ListChange::Kind::inserted: objects_.insert(change.from, &object); return;
            case ListChange::Kind::erased: objects_.take(change.from); return;
            case ListChange::Kind::moved: break;
        }
        objects_.insert(change.to + (change.to > change.from ? 1 : 0), &object);
        objects_.take(change.from + (change.to > change.from ? 0 : 1));
    } catch (...) {
        news_.pop_back();
        throw;
    }
}

void ListState::change(ListChange const& change, RefCountedObject& object) {
    ur::Reference<ListVersion> next(new ListVersion(*version_, change, object));
    apply(change, object);
    version_.swap(next);
}

void ListState::turnTo(ListVersion& version) {
    std::vector<ListVersion*> forwards;
    ListVersion* way = &version;
    while (way != version_.get()) {
        if (way->depth() > version_->depth()) {
            forwards.push_back(way);
            way = way->parent();
        } else {
            turnBack();
        }
    }
    for (; !forwards.empty(); forwards.pop_back()) {
        ListVersion& next = *forwards.back();
        Lifetimes::returned(next.object());
        apply(next.change(), next.object());
        version_.reset(&next);
    }
}

void ListState::turnBack() {
    Lifetimes::returned(version_->object());
    apply(version_->change().inverse(), version_->object());
    version_.reset(version_->parent());
}

template <class Tell>
void ListState::deliver(Tell tell) {
    if (delivering_) return;
    delivering_ = true;
    urOS::FirstError errors;
    while (delivered_ < news_.size()) {
        News const next = std::move(news_[delivered_++]);
        errors.guard([&] { tell(*list_, next); });
    }
    news_.clear();
    if (news_.capacity() > mostSpareNews) news_.shrink_to_fit();
    delivered_ = 0;
    delivering_ = false;
    errors.rethrow();
}

}  // namespace impl

namespace {

/// A record holds a version of the list. It is read only while the list exists.
constexpr FieldHandlers versionHandlers = {
    [](Writer& writer, void const* field) { writer.writePtr(&static_cast<impl::ListState const*>(field)->version()); },
    [](Reader& reader, void* field) {
        static_cast<impl::ListState*>(field)->turnTo(*static_cast<impl::ListVersion*>(reader.readPtr()));
    },
    nullptr};

}  // namespace

ObjectListBase::ObjectListBase(Manager& manager)
    : Object(manager), state_(std::make_shared<impl::ListState>(*this, impl::ListState::Objects())) {}
ObjectListBase::ObjectListBase(Manager& manager, std::size_t mostInPiece)
    : Object(manager), state_(std::make_shared<impl::ListState>(*this, impl::ListState::Objects(mostInPiece))) {}

ObjectListBase::~ObjectListBase() { state_->setGone(); }

std::size_t ObjectListBase::size() const noexcept { return state_->objects().size(); }

std::span<ObjectListBase::Element const> ObjectListBase::run(std::size_t index) const noexcept {
    return index < size() ? state_->objects().run(index) : std::span<Element const>();
}

bool ObjectListBase::insertObject(std::size_t index, RefCountedObject* object) {
    if (!object || index > size() || object->txnManager() != txnManager()) return false;
    change({impl::ListChange::Kind::inserted, index, 0}, *object);
    return true;
}

bool ObjectListBase::erase(std::size_t index) {
    if (index >= size()) return false;
    change({impl::ListChange::Kind::erased, index, 0}, *run(index).front());
    return true;
}

bool ObjectListBase::move(std::size_t from, std::size_t to) {
    if (from >= size() || to >= size()) return false;
    if (from != to) change({impl::ListChange::Kind::moved, from, to}, *run(from).front());
    return true;
}

void ObjectListBase::clear() {
    std::shared_ptr<impl::ListState> const state = state_;
    for (std::size_t left = size(); left > 0 && state->list() && erase(size() - 1); --left) {
    }
}

void ObjectListBase::change(impl::ListChange const& change, RefCountedObject& object) {
    transact();
    state_->change(change, object);
    deliver();
}

void ObjectListBase::deliver() {
    std::shared_ptr<impl::ListState> const state = state_;
    state->deliver([](ObjectListBase const& list, impl::ListState::News const& news) {
        auto const& [change, object] = news;
        switch (change.kind) {
            case impl::ListChange::Kind::inserted: return list.emitInserted(change.from, *object);
            case impl::ListChange::Kind::erased: return list.emitErased(change.from, *object);
            case impl::ListChange::Kind::moved: return list.emitMoved(change.from, change.to, *object);
        }
    });
}

void ObjectListBase::onTransact(Serializer& serializer) {
    serializer.beginObject(this, nullptr);
    Object::onTransact(serializer);
    serializer.field(state_.get(), versionHandlers);
    serializer.endObject(this);
}

void ObjectListBase::onTxnModified() { deliver(); }

void clear(Clear& /*cleared*/, ObjectListBase& list) { list.state_->objects().clear(); }

}  // namespace nxTXN
