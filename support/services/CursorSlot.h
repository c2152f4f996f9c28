// Decides which of several cursor requests a view shows.
#pragma once

#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"
#include "foundation/urRTB/Signal.h"
#include "support/services/Cursor.h"

namespace nxSupport {

/// Decides which cursor a view shows: the one requested last among the remaining requests.
///
/// Belongs to a view, its client, which listens to the signals and shows the cursor with precedence; held by reference.
/// Prints events on the debug code `Debug_Cursors`. Handlers of its signals may do anything, including destroying the
/// slot. Main thread only.
class NX_API CursorSlot : public ur::ReferenceCount {
public:
    /// The cursor with precedence may have changed.
    urRTB::Signal<> cursorsChanged;
    /// A cursor's image has changed.
    urRTB::Signal<CursorSlot*> cursorUpdated;
    /// The slot is about to be destroyed. An exception from a handler is printed on the application output.
    urRTB::Signal<CursorSlot*> slotDestroyed;

    explicit CursorSlot(void* client);
    CursorSlot(CursorSlot const&) = delete;
    CursorSlot& operator=(CursorSlot const&) = delete;

    [[nodiscard]] void* client() const noexcept { return client_; }

    /// Adds a request for `client`. Cursors call these themselves. Requires: `cursor` was created for this slot.
    void add(void const* client, Cursor& cursor);
    /// Removes the oldest request of that client and cursor, if any.
    void remove(void const* client, Cursor& cursor);
    void update(void const* client, Cursor& cursor);
    /// While disabled, no cursor has precedence.
    void disable(bool disabled);

    /// Null if there is no request or the slot is disabled.
    [[nodiscard]] Cursor* cursorWithPrecedence() const;
    /// The client of the newest request, even if the slot is disabled; null if there is none.
    [[nodiscard]] void const* subclientWithPrecedence() const noexcept;

protected:
    ~CursorSlot() override;

private:
    friend class Cursor;
    using Entry = std::pair<void const*, Cursor*>;

    void removeDying(void const* client, Cursor& cursor);
    void reportRemoved(void const* client, Cursor const& cursor);
    void forget(Cursor const& cursor) noexcept;
    [[nodiscard]] int count() const noexcept { return static_cast<int>(entries_.size()); }

    ur::list<Entry> entries_;  ///< the requests, oldest first
    void* client_;
    ur::Reference<impl::SlotLink> link_;
    bool disabled_ = false;
};

}  // namespace nxSupport
