// Where requests for mouse cursors compete.
#pragma once

#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"
#include "foundation/urRTB/Signal.h"
#include "support/services/Cursor.h"

namespace nxSupport {

/// Decides which cursor a view shows: that of the newest request that is still there.
///
/// Belongs to the view, its client, which listens to the signals and shows what has precedence; held by reference.
/// Says what happens on the debug code `Debug_Cursors`. Handlers of its signals may do anything, destroy the slot
/// included. Main thread only.
class NX_API CursorSlot : public ur::ReferenceCount {
public:
    /// Another cursor may have precedence now.
    urRTB::Signal<> cursorsChanged;
    /// The image of a cursor has changed.
    urRTB::Signal<CursorSlot*> cursorUpdated;
    /// The slot is about to go. What a handler throws is printed on the application output.
    urRTB::Signal<CursorSlot*> slotDestroyed;

    explicit CursorSlot(void* client);
    CursorSlot(CursorSlot const&) = delete;
    CursorSlot& operator=(CursorSlot const&) = delete;

    [[nodiscard]] void* client() const noexcept { return client_; }

    /// Requests for `client`; a cursor calls these itself. Requires: `cursor` was made for this slot.
    void add(void const* client, Cursor& cursor);
    /// Takes back the oldest such request, if there is one.
    void remove(void const* client, Cursor& cursor);
    void update(void const* client, Cursor& cursor);
    /// While disabled, no cursor has precedence.
    void disable(bool disabled);

    /// Null when there is no request or the slot is disabled.
    [[nodiscard]] Cursor* cursorWithPrecedence() const;
    /// The client of the newest request, also when the slot is disabled; null when there is none.
    [[nodiscard]] void const* subclientWithPrecedence() const noexcept;

protected:
    ~CursorSlot() override;

private:
    friend class Cursor;
    using Entry = std::pair<void const*, Cursor*>;

    void removeDying(void const* client, Cursor& cursor);
    void tellRemoved(void const* client, Cursor const& cursor);
    void forget(Cursor const& cursor) noexcept;
    [[nodiscard]] int count() const noexcept { return static_cast<int>(entries_.size()); }

    ur::list<Entry> entries_;  ///< the requests, oldest first
    void* client_;
    ur::Reference<impl::SlotLink> link_;
    bool disabled_ = false;
};

}  // namespace nxSupport
