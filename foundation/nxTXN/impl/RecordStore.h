// Records in order of creation.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

#include "foundation/nxTXN/Object.h"
#include "foundation/nxTXN/Reader.h"
#include "foundation/nxTXN/Writer.h"
#include "foundation/nxTXN/impl/RecordArena.h"

namespace nxTXN::impl {

class History;

/// Copies without a call in the most frequent case: one number.
inline void copyBytes(std::byte* to, std::byte const* from, std::size_t count) noexcept {
    if (count == sizeof(double)) {
        std::memcpy(to, from, sizeof(double));
    } else if (count > 0) {
        std::memcpy(to, from, count);
    }
}

/// The saved fields of an object: bytes and pointers.
struct Content {
    std::span<std::byte const> data;
    std::span<std::uintptr_t> words;

    [[nodiscard]] Reader reader() const noexcept { return {data, words}; }
    [[nodiscard]] std::size_t bytes() const noexcept { return bytes(data.size(), words.size()); }
    /// The bytes needed to store the content: the pointers lie after the data, at a multiple of eight.
    [[nodiscard]] static std::size_t bytes(std::size_t data, std::size_t words) noexcept {
        return (data + 7) / 8 * 8 + words * sizeof(std::uintptr_t);
    }
};

/// The former fields of one object or, when its step is undone, the fields to redo.
///
/// The content follows the header. A content that replaced a smaller one lies elsewhere, and its address follows the
/// header.
struct Record {
    Object* subject;           // null once destroyed
    std::uint32_t room : 31;   // bytes after the header
    std::uint32_t hooked : 1;  // the subject gave a restore hook
    std::uint32_t dataBytes;
    std::uint32_t words;
    std::uint32_t formerStamp;  // the subject's stamp before this record was made

    [[nodiscard]] std::size_t bytes() const noexcept { return sizeof(Record) + room; }
    [[nodiscard]] std::byte* behind() noexcept { return reinterpret_cast<std::byte*>(this + 1); }
    /// Whether a content of that size fits in place of the present one.
    [[nodiscard]] bool isAlike(std::size_t otherDataBytes, std::size_t otherWords) const noexcept {
        return otherDataBytes == dataBytes && otherWords == words;
    }
    [[nodiscard]] bool isElsewhere() const noexcept { return Content::bytes(dataBytes, words) > room; }
    [[nodiscard]] std::byte* place() noexcept {
        return isElsewhere() ? *reinterpret_cast<std::byte**>(behind()) : behind();
    }
    [[nodiscard]] Content content() noexcept {
        std::byte* const start = place();
        std::byte* const pointers = start + Content::bytes(dataBytes, 0);
        return {{start, dataBytes}, {reinterpret_cast<std::uintptr_t*>(pointers), words}};
    }
};
static_assert(sizeof(Record) == 24);

/// Keeps records and, through them, their subjects and the targets of their pointers.
class RecordStore {
public:
    using Place = RecordArena::Place;
    /// Memory for a content that does not fit into its record.
    using Elsewhere = std::unique_ptr<std::byte[]>;

    RecordStore(History& history, Sizes const& sizes) noexcept : history_(history), arena_(sizes) {}

    enum class Hook : bool { none, given };

    /// Adds a record of `subject` on top; changes nothing when it throws.
    void push(Object& subject, Content const& content, Hook hook, std::uint32_t formerStamp);
    /// Exchanges the content for one whose pointers are already kept. `elsewhere` receives it and becomes the record's;
    /// null if the content fits into the record.
    void replace(Record& record, Content const& content, std::byte* elsewhere) noexcept {
        if (!record.isAlike(content.data.size(), content.words.size())) {
            return replaceUnlike(record, content, elsewhere);
        }
        std::byte* const place = record.place();
        copyBytes(place, content.data.data(), content.data.size());
        if (content.words.empty()) return;
        std::span const former{reinterpret_cast<std::uintptr_t*>(place + Content::bytes(record.dataBytes, 0)),
                               record.words};
        release(former);
        std::copy(content.words.begin(), content.words.end(), former.begin());
    }

    [[nodiscard]] Place top() const noexcept { return arena_.top(); }
    /// Calls `visit(Record&)` for `count` records from `place` on; returns the place after them.
    template <class Visit>
    Place visit(Place place, std::uint32_t count, Visit visit) {
        while (count-- > 0) {
            auto* record = reinterpret_cast<Record*>(arena_.at(place));
            place.offset += static_cast<std::uint32_t>(record->bytes());
            visit(*record);
        }
        return place;
    }

    /// Whether `holds(Record&)` for any of them.
    template <class Holds>
    bool any(Place place, std::uint32_t count, Holds holds) {
        for (bool found = false; count-- > 0;) {
            place = visit(place, 1, [&](Record& record) { found = holds(record); });
            if (found) return true;
        }
        return false;
    }

    /// Releases the `count` records from `place` on, which are the topmost, or the `count` lowest ones.
    void pop(Place place, std::uint32_t count) noexcept;
    void popBottom(std::uint32_t count) noexcept;
    void clear() noexcept;
    /// Keeps those of the topmost `count` records, from `place` on, that `wanted(Record&)`. Returns their number.
    template <class Wanted>
    std::uint32_t filterTop(Place place, std::uint32_t count, Wanted wanted);

    /// Keeps the targets of pointers, or releases them. Keeps none when it throws.
    void keep(std::span<std::uintptr_t> words);
    static void release(std::span<std::uintptr_t> words) noexcept;
    /// Removes `gone` from every record: as a subject, and as the target of a pointer, which becomes null.
    void forget(Object const& gone) noexcept;
    static void forget(Object const& gone, std::span<std::uintptr_t> words) noexcept;

    [[nodiscard]] std::size_t bytes() const noexcept { return bytes_; }

private:
    void replaceUnlike(Record& record, Content const& content, std::byte* elsewhere) noexcept;
    void release(Record& record) noexcept;
    void drop(Record& record) noexcept;
    template <class Visit>
    void visitAll(Visit visit);

    History& history_;
    RecordArena arena_;
    std::size_t bytes_ = 0;
};

template <class Wanted>
std::uint32_t RecordStore::filterTop(Place place, std::uint32_t count, Wanted wanted) {
    std::uint32_t number = 0;
    Place end = place;
    visit(place, count, [&](Record& record) {
        if (!wanted(record)) return release(record);
        arena_.slide(end, reinterpret_cast<std::byte*>(&record), record.bytes());
        ++number;
    });
    arena_.truncate(end);
    return number;
}

}  // namespace nxTXN::impl
