// Creates records, exchanges their contents, and releases what they keep.
#include "foundation/nxTXN/impl/RecordStore.h"

#include <algorithm>
#include <new>
#include <utility>

#include "foundation/nxTXN/impl/History.h"
#include "foundation/nxTXN/impl/words.h"

namespace nxTXN::impl {
namespace {

void store(Record& record, std::byte* place, Content const& content) noexcept {
    record.dataBytes = static_cast<std::uint32_t>(content.data.size());
    record.words = static_cast<std::uint32_t>(content.words.size());
    copyBytes(place, content.data.data(), content.data.size());
    std::copy(content.words.begin(), content.words.end(),
              reinterpret_cast<std::uintptr_t*>(place + Content::bytes(content.data.size(), 0)));
}

// The pointer to a transaction object becomes null.
void makeNull(std::uintptr_t* word) noexcept {
    bool const pair = markOf(word[0]) == Mark::keeper;
    word[0] = marked(nullptr, pair ? Mark::held : Mark::address);
    if (pair) word[1] = 0;
}

}  // namespace

void RecordStore::push(Object& subject, Content const& content, Hook hook, std::uint32_t formerStamp) {
    history_.expectStorable(content.data.size(), content.words.size());
    // At least enough for the address of an external content.
    std::size_t const room = std::max(content.bytes(), sizeof(std::byte*));
    arena_.makeRoom(sizeof(Record) + room);
    keep(content.words);
    auto* const record = new (arena_.allocate(sizeof(Record) + room)) Record{};
    record->subject = &subject;
    record->room = static_cast<std::uint32_t>(room) & (~0U >> 1);
    record->hooked = hook == Hook::given;
    record->formerStamp = formerStamp;
    bytes_ += record->bytes();
    store(*record, record->behind(), content);
    static_cast<void>(history_.pin(subject));  // an object of this manager
}

void RecordStore::replaceUnlike(Record& record, Content const& content, std::byte* elsewhere) noexcept {
    drop(record);
    store(record, elsewhere ? elsewhere : record.behind(), content);
    if (!elsewhere) return;
    bytes_ += content.bytes();
    *reinterpret_cast<std::byte**>(record.behind()) = elsewhere;
}

// Releases the content.
void RecordStore::drop(Record& record) noexcept {
    Content const content = record.content();
    release(content.words);
    if (!record.isElsewhere()) return;
    bytes_ -= content.bytes();
    delete[] record.place();
}

void RecordStore::release(Record& record) noexcept {
    bytes_ -= record.bytes();
    if (record.subject) Lifetimes::unpin(*record.subject);
    drop(record);
}

void RecordStore::keep(std::span<std::uintptr_t> words) {
    std::uintptr_t const* reached = words.data();
    auto const pin = [this, &reached](Object& object, std::uintptr_t* word) {
        reached = word;
        if (!history_.pin(object)) makeNull(word);
    };
    try {
        visitKept(words, pin, [](void const* object, Holding const& how) { how.hold(object); });
    } catch (...) {
        release(words.first(static_cast<std::size_t>(reached - words.data())));
        throw;
    }
}

void RecordStore::release(std::span<std::uintptr_t> words) noexcept {
    visitKept(
        words, [](Object& object, auto*) { Lifetimes::unpin(object); },
        [](void const* object, Holding const& how) { how.drop(object); });
}

void RecordStore::pop(Place place, std::uint32_t count) noexcept {
    visit(place, count, [this](Record& record) { release(record); });
    arena_.truncate(place);
}

void RecordStore::popBottom(std::uint32_t count) noexcept {
    arena_.trim(visit(arena_.bottom(), count, [this](Record& record) { release(record); }));
}

template <class Visit>
void RecordStore::visitAll(Visit visit) {
    Place place = arena_.bottom();
    while (std::byte* const piece = arena_.at(place)) {
        auto& record = *reinterpret_cast<Record*>(piece);
        place.offset += static_cast<std::uint32_t>(record.bytes());
        visit(record);
    }
}

void RecordStore::clear() noexcept {
    visitAll([this](Record& record) { release(record); });
    arena_.truncate(arena_.bottom());
}

void RecordStore::forget(Object const& gone) noexcept {
    visitAll([&](Record& record) {
        if (record.subject == &gone) record.subject = nullptr;
        forget(gone, record.content().words);
    });
}

void RecordStore::forget(Object const& gone, std::span<std::uintptr_t> words) noexcept {
    auto const forgetWord = [&gone](Object& object, std::uintptr_t* word) {
        if (&object == &gone) makeNull(word);
    };
    visitKept(words, forgetWord, [](void const* /*object*/, Holding const& /*how*/) {});
}

}  // namespace nxTXN::impl
