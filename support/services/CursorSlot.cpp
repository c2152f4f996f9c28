// Finds the cursor with precedence.
#include "support/services/CursorSlot.h"

#include <algorithm>

#include "foundation/urOS/reportException.h"
#include "support/services/DebugPrint.h"
#include "support/services/impl/SlotLink.h"

namespace nxSupport {

CursorSlot::CursorSlot(void* client) : client_(client), link_(ur::make<impl::SlotLink>(*this)) {}

CursorSlot::~CursorSlot() {
    ref();  // so that a handler that holds and releases the slot does not destroy it again
    try {
        slotDestroyed.emit(this);
    } catch (...) {
        urOS::reportException("nxSupport::CursorSlot", std::current_exception());
    }
    link_->slot = nullptr;
}

void CursorSlot::add(void const* client, Cursor& cursor) {
    entries_.emplace_back(client, &cursor);
    DebugPrint print("nxSupport::CursorSlot::add", Debug_Cursors);
    print("CursorSlot::add %s for client %p (have %d)", cursor.name().c_str(), client, count());
    cursorsChanged.emit();
}

void CursorSlot::remove(void const* client, Cursor& cursor) {
    auto const place = std::find(entries_.begin(), entries_.end(), Entry(client, &cursor));
    if (place != entries_.end()) entries_.erase(place);
    reportRemoved(client, cursor);
}

/// Removes all requests of the cursor, including those added for other clients.
void CursorSlot::removeDying(void const* client, Cursor& cursor) {
    forget(cursor);
    reportRemoved(client, cursor);
}

void CursorSlot::reportRemoved(void const* client, Cursor const& cursor) {
    DebugPrint print("nxSupport::CursorSlot::remove", Debug_Cursors);
    print("CursorSlot::remove %s for %p (have %d)", cursor.name().c_str(), client, count());
    cursorsChanged.emit();
}

void CursorSlot::forget(Cursor const& cursor) noexcept {
    entries_.remove_if([&](Entry const& entry) { return entry.second == &cursor; });
}

void CursorSlot::update(void const* client, Cursor& cursor) {
    DebugPrint print("nxSupport::CursorSlot::update", Debug_Cursors);
    print("CursorSlot::update %s for %p (have %d)", cursor.name().c_str(), client, count());
    cursorUpdated.emit(this);
}

void CursorSlot::disable(bool disabled) {
    if (disabled_ == disabled) return;
    disabled_ = disabled;
    DebugPrint print("nxSupport::CursorSlot::disable", Debug_Cursors);
    print("CursorSlot::disable %d", disabled ? 1 : 0);
    cursorsChanged.emit();
}

Cursor* CursorSlot::cursorWithPrecedence() const {
    if (entries_.empty() || disabled_) return nullptr;
    auto const& [client, cursor] = entries_.back();
    DebugPrint print("nxSupport::CursorSlot::cursorWithPrecedence", Debug_Cursors);
    print("CursorSlot %p gave precedence to cursor %s for client %p", static_cast<void const*>(this),
          cursor->name().c_str(), client);
    return cursor;
}

void const* CursorSlot::subclientWithPrecedence() const noexcept {
    return entries_.empty() ? nullptr : entries_.back().first;
}

}  // namespace nxSupport
