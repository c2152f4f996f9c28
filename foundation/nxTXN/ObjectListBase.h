// What lists of objects of all types have in common.
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
    /// False, and nothing changes, when there is none at `index`.
    bool erase(std::size_t index);
    /// The object at `from` is at `to` afterwards. False, and nothing changes, when one of the two does not exist.
    bool move(std::size_t from, std::size_t to);
    /// Erases as many as there are, from the last one on: what listeners insert meanwhile may stay.
    void clear();

protected:
    using Element = ur::Reference<RefCountedObject>;

    explicit ObjectListBase(Manager& manager);
    /// With pieces of so many elements, for tests.
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

    std::shared_ptr<impl::ListState> state_;  ///< held by deliveries, since a listener may destroy the list
};

/// Lets go of all objects without a word, because the owner of the list is about to be deleted.
NX_API void clear(Clear& cleared, ObjectListBase& list);

}  // namespace nxTXN
