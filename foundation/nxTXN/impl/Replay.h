// Restores the fields of objects for undo, redo and abort.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/nxTXN/Serializer.h"
#include "foundation/nxTXN/Writer.h"
#include "foundation/nxTXN/impl/RecordStore.h"
#include "foundation/nxTXN/impl/Steps.h"
#include "foundation/ur/containers.h"
#include "foundation/urOS/FirstError.h"

namespace nxTXN::impl {

class History;

/// Moves records into their objects, and the objects' state into the records.
///
/// Undo and redo first save the present state of a step's objects, then restore them, and finally exchange the two.
/// Until the exchange the records are unchanged, so a step whose fields cannot be saved or read is reverted. Abort only
/// restores, in memory that was reserved when the records were made.
class Replay {
public:
    Replay(History& history, RecordStore& records) noexcept : history_(history), records_(records) {}

    enum class Order : bool { forwards, backwards };
    /// False, with all objects as before, if a field cannot be saved or read. End the replay with `discard` then,
    /// otherwise with `exchange`.
    [[nodiscard]] bool restore(Step const& step, Order order, urOS::FirstError& errors);
    void discard() noexcept;
    void exchange() noexcept;

    /// Restores the records from `begin` on in reverse order. Requires: `reserve` was called for them.
    void takeBack(RecordStore::Place begin, std::uint32_t records, urOS::FirstError& errors) noexcept;
    void reserve(std::size_t records) {
        if (records > work_.capacity()) work_.reserve(2 * records);
    }
    /// Calls `onTxnModified` on the restored objects that exist.
    void notifyModified(urOS::FirstError& errors) noexcept;

    /// Removes a destroyed object from the saved state.
    void forget(Object const& gone) noexcept { RecordStore::forget(gone, writer_.mutableWords()); }
    /// Adds the object's state to the writer.
    static RestoreHook save(Object& object, Writer& writer);

private:
    /// A record to restore, and the position of the object's present state in the writer.
    struct Restoration {
        Record* record;
        RestoreHook hook;
        std::size_t dataBegin = 0;
        std::size_t wordsBegin = 0;
        std::uint32_t dataBytes = 0;
        std::uint32_t words = 0;
        std::byte* elsewhere = nullptr;  // memory for that state, if it does not fit into the record
    };

    [[nodiscard]] Record* onlyPlainRecord(Step const& step) noexcept;
    bool restorePlain(Record& record, urOS::FirstError& errors);
    bool restoreHooked(Step const& step, Order order, urOS::FirstError& errors);
    void swap(Record& record, Serializer& pass);
    void beginCapture() noexcept;
    void capture(Step const& step);
    void capture(Record& record);
    void plan(Record& record, RestoreHook hook, std::size_t dataBegin, std::size_t wordsBegin);
    void findRoom(Restoration& item);
    [[nodiscard]] Content captured(Restoration const& item) noexcept;
    bool restoreAll(urOS::FirstError& errors);
    void putAllBack(std::size_t restored) noexcept;
    bool restoreOne(Restoration const& item, Content const& content, urOS::FirstError& errors);
    bool restoreByHook(Restoration const& item, Content const& content, urOS::FirstError& errors);

    History& history_;
    RecordStore& records_;
    Writer writer_;                                 // the objects' present state
    std::size_t kept_ = 0;                          // number of words in the writer whose targets are kept
    ur::vector<Restoration> work_;                  // in the order of restoring
    ur::vector<RecordStore::Elsewhere> elsewhere_;  // owns the memory that `work_` refers to
};

}  // namespace nxTXN::impl
