// The common base of object lists of all types.
#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "foundation/nxTXN/Object.h"
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"

namespace nxTXN {

class Clear;
class Reader;
class Writer;

namespace impl {
class ListState;
struct ListChange;
}  // namespace impl

/// The part of `ObjectList` that does not know the type of the objects.
class NX_API ObjectListBase : public Object {
public:
    ~ObjectListBase() override;

    [[nodiscard]] std::size_t size() const noexcept;
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    /// False, with no change, when there is no object at `index`.
    bool erase(std::size_t index);
    /// Moves the object at `from` to index `to`. False, with no change, when one of the two does not exist.
    bool move(std::size_t from, std::size_t to);
    /// Erases the present objects, from the last one on. Objects that listeners insert meanwhile may stay.
    void clear();

protected:
    using Element = ur::Reference<RefCountedObject>;

    explicit ObjectListBase(Manager& manager);
    /// Uses pieces of at most `mostInPiece` elements, for tests.
    ObjectListBase(Manager& manager, std::size_t mostInPiece);

    [[nodiscard]] bool insertObject(std::size_t index, RefCountedObject* object);
    /// The elements from `index` up to some later one; empty at the end.
    [[nodiscard]] std::span<Element const> run(std::size_t index) const noexcept;

    virtual void emitInserted(std::size_t index, RefCountedObject& object) const = 0;
    virtual void emitErased(std::size_t index, RefCountedObject& object) const = 0;
    virtual void emitMoved(std::size_t from, std::size_t to, RefCountedObject& object) const = 0;

    void onTransact(Serializer& serializer) override;
    void onTxnModified() override;

private:
    friend NX_API void clear(Clear& cleared, ObjectListBase& list);

    void change(impl::ListChange const& change, RefCountedObject& object);
    void deliver();

    std::shared_ptr<impl::ListState> state_;  ///< deliveries hold it too, since a listener may destroy the list
};

/// Releases all objects without signals, because the owner of the list is about to be deleted.
NX_API void clear(Clear& cleared, ObjectListBase& list);

}  // namespace nxTXN
