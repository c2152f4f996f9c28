// Writes packets.
#include "foundation/io/ioWriteContext.h"

#include <algorithm>

#include "foundation/io/impl/ObjectIndex.h"
#include "foundation/io/ioPacketRegistry.h"

namespace {

constexpr int binaryMethod = 1;

}  // namespace

std::unique_ptr<ioWriteContext> ioWriteContextAlloc(ioBufferedStreamOutput& output, int method,
                                                    ioPacketRegistry& registry) {
    if (!output.isOpen() || method != binaryMethod) return nullptr;
    return std::unique_ptr<ioWriteContext>(new ioWriteContext(output, registry));
}

ioWriteContext::ioWriteContext(ioBufferedStreamOutput& output, ioPacketRegistry& registry)
    : output_(output), registry_(registry), index_(std::make_unique<ioImpl::ObjectIndex>()) {}
ioWriteContext::~ioWriteContext() = default;

void ioWriteContext::fail(ioStatus status) noexcept {
    if (status_ == ioStatus::ok) status_ = status;
    phase_ = Phase::after;
    takesValues_ = false;
}

int ioWriteContext::getStatus() const noexcept {
    bool const lost = status_ == ioStatus::ok && output_.error().isError();
    return static_cast<int>(lost ? ioStatus::streamFailed : status_);
}

void ioWriteContext::startFile() {
    if (phase_ != Phase::before) return fail(ioStatus::misuse);
    phase_ = Phase::writing;
    registry_.registerTypes();
    output_.write(ioFormat::fileMark);
    *output_.room(1) = static_cast<char>(ioFormat::version);
    output_.advance(1);
}

void ioWriteContext::endFile() {
    if (phase_ != Phase::writing || !open_.empty()) return fail(ioStatus::misuse);
    putMark(ioFormat::endOfFileMark);
    phase_ = Phase::after;
}

void ioWriteContext::putLongToken(ioFormat::Kind kind, std::uint64_t number) {
    char* const start = output_.room(ioFormat::longestToken);
    char* to = start;
    *to++ = static_cast<char>(ioFormat::token(kind, ioFormat::longNumber));
    for (number -= ioFormat::longNumber; number >= 0x80; number >>= 7) *to++ = static_cast<char>(number | 0x80);
    *to++ = static_cast<char>(number);
    output_.advance(static_cast<std::size_t>(to - start));
}

ioPacketTypeId ioWriteContext::typeId(std::string_view typeName) {
    if (auto const found = idOfName_.find(typeName); found != idOfName_.end()) return found->second;
    bool const writable = !typeName.empty() && typeName.size() <= ioFormat::longestTypeName;
    if (!writable || !registry_.supports(typeName)) {
        fail(ioStatus::unknownType);
        return ioPacketTypeId::none;
    }
    auto const id = static_cast<ioPacketTypeId>(types_.size());
    types_.push_back({std::string(typeName), -1});
    idOfName_.emplace(typeName, id);
    return id;
}

void ioWriteContext::nameType(Type& type) {
    type.number = static_cast<int>(std::ranges::count_if(types_, [](Type const& other) { return other.number >= 0; }));
    putMark(ioFormat::typeMark);
    putToken(ioFormat::text, type.name.size());
    output_.write(type.name);
}

void ioWriteContext::startPacket(char const* typeName, void const* object) {
    if (phase_ != Phase::writing) return fail(ioStatus::misuse);
    if (ioPacketTypeId const type = typeId(typeName); type != ioPacketTypeId::none) startPacket(type, object);
}

void ioWriteContext::startPacket(ioPacketTypeId type, void const* object) {
    std::size_t const former = object ? positionOf(object) : ioImpl::ObjectIndex::none;
    if (former != ioImpl::ObjectIndex::none) return fail(isOpen(former) ? ioStatus::cycle : ioStatus::misuse);
    startNewPacket(type, object);
}

std::size_t ioWriteContext::positionOf(void const* object) const { return index_->find(objects_, object); }

bool ioWriteContext::isOpen(std::size_t position) const noexcept {
    // Open packets are ordered by their first object. Of several with the same one, the innermost alone can own it.
    auto const after = std::ranges::upper_bound(open_, position, {}, &OpenPacket::firstObject);
    return after != open_.begin() && std::prev(after)->firstObject == position && std::prev(after)->hasObject;
}

bool ioWriteContext::isReferenceDefined(void const* object) const {
    std::size_t const position = positionOf(object);
    return position != ioImpl::ObjectIndex::none && !isOpen(position);
}

void ioWriteContext::writeOtherReference(void const* object) {
    if (!takesValues_) return fail(ioStatus::misuse);
    if (!object) return putToken(ioFormat::reference, 0);
    std::size_t const position = positionOf(object);
    if (position == ioImpl::ObjectIndex::none || isOpen(position)) return fail(ioStatus::unresolvedReference);
    putToken(ioFormat::reference, objects_.size() - position);
}
