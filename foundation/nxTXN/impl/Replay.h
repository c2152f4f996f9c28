// Undo, redo and abort of the fields of objects.
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

/// Puts records back into their objects, and what the objects were into the records.
///
/// Undo and redo first save what the objects of a step are now, then restore them, and at last exchange the two. Until
/// the exchange nothing in the records has changed, so a step whose fields cannot be saved or read is put back as it
/// was. Abort restores only, in memory that was reserved when the records were made.
class Replay {
public:
    Replay(History& history, RecordStore& records) noexcept : history_(history), records_(records) {}

    enum class Order : bool { forwards, backwards };
    /// False, with all objects as before, if a field cannot be saved or read: `discard` ends the replay then, and
    /// `exchange` otherwise.
    [[nodiscard]] bool restore(Step const& step, Order order, urOS::FirstError& errors);
    void discard() noexcept;
    void exchange() noexcept;

    /// Restores the records from `begin` on in reverse order. Requires: `reserve` was called for them.
    void takeBack(RecordStore::Place begin, std::uint32_t records, urOS::FirstError& errors) noexcept;
    void reserve(std::size_t records) {
        if (records > work_.capacity()) work_.reserve(2 * records);
    }
    /// Calls `onTxnModified` of the restored objects that exist.
    void notifyModified(urOS::FirstError& errors) noexcept;

    /// Takes an object that goes out of what was saved.
    void forget(Object const& gone) noexcept { RecordStore::forget(gone, writer_.mutableWords()); }
    /// Adds what the object is to the writer.
    static RestoreHook save(Object& object, Writer& writer);

private:
    /// A record on its way back into its object, and where in the writer lies what the object is now.
    struct Restoration {
        Record* record;
        RestoreHook hook;
        std::size_t dataBegin = 0;
        std::size_t wordsBegin = 0;
        std::uint32_t dataBytes = 0;
        std::uint32_t words = 0;
        std::byte* elsewhere = nullptr;  // room for it, if it does not fit into the record
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
    Writer writer_;                                 // what the objects are now
    std::size_t kept_ = 0;                          // words of the writer whose targets are kept
    ur::vector<Restoration> work_;                  // in the order of restoring
    ur::vector<RecordStore::Elsewhere> elsewhere_;  // owns the room that `work_` refers to
};

}  // namespace nxTXN::impl
