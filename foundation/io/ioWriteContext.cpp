// Writes packets.
#include "foundation/io/ioWriteContext.h"

#include <algorithm>

#include "foundation/io/impl/NameIndex.h"
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
    : output_(output),
      registry_(registry),
      index_(std::make_unique<ioImpl::ObjectIndex>()),
      names_(std::make_unique<ioImpl::NameIndex>()) {}
ioWriteContext::~ioWriteContext() = default;

void ioWriteContext::fail(ioStatus status) noexcept {
    // A caller that stops because the stream failed also leaves other faults: report the stream's.
    if (status_ == ioStatus::ok) status_ = output_.error().isError() ? ioStatus::streamFailed : status;
    phase_ = Phase::after;
    takesValues_ = false;
}

void ioWriteContext::startFile() {
    if (phase_ != Phase::before) return fail(ioStatus::misuse);
    phase_ = Phase::writing;
    registry_.registerTypes();
    output_.write(ioFormat::fileMark);
    output_.write(std::string_view(reinterpret_cast<char const*>(&ioFormat::version), 1));
}

void ioWriteContext::endFile() {
    if (phase_ != Phase::writing || !open_.empty()) return fail(ioStatus::misuse);
    output_.moveTo(putMark(output_.room(1), ioFormat::endOfFileMark));
    phase_ = Phase::after;
}

ioPacketTypeId ioWriteContext::typeId(std::string_view typeName) {
    if (auto const found = idOfName_.find(typeName); found != idOfName_.end()) return found->second;
    bool const writable = !typeName.empty() && typeName.size() <= ioFormat::longestTypeName;
    if (!writable || !registry_.supports(typeName)) {
        fail(ioStatus::unknownType);
        return ioPacketTypeId::none;
    }
    auto const id = static_cast<ioPacketTypeId>(numbers_.size());
    numbers_.push_back(-1);
    idOfName_.emplace(typeName, id);
    return id;
}

void ioWriteContext::nameType(ioPacketTypeId type) {
    numbers_[static_cast<std::size_t>(type)] = namedTypes_++;
    auto const named = std::ranges::find(idOfName_, type, [](auto const& entry) { return entry.second; });
    char* const to = putMark(output_.room(2 * ioFormat::longestToken), ioFormat::typeMark);
    output_.moveTo(putValue(to, std::string_view(named->first)));
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
    // Open packets are ordered by their first object. If several have the same one, only the innermost can own it.
    auto const after = std::ranges::upper_bound(open_, position, {}, &OpenPacket::firstObject);
    return after != open_.begin() && std::prev(after)->firstObject == position && std::prev(after)->hasObject;
}

bool ioWriteContext::isReferenceDefined(void const* object) const {
    std::size_t const position = positionOf(object);
    return position != ioImpl::ObjectIndex::none && !isOpen(position);
}

void ioWriteContext::writeReference(void const* object, int /*flag*/) {
    if (!takesValues_) return fail(ioStatus::misuse);
    std::size_t const position = object ? positionOf(object) : objects_.size();
    if (position == ioImpl::ObjectIndex::none || isOpen(position)) return fail(ioStatus::unresolvedReference);
    output_.moveTo(
        ioFormat::putToken(output_.room(ioFormat::longestToken), ioFormat::reference, objects_.size() - position));
}

void ioWriteContext::writeNameValue(std::string_view value) {
    if (!takesValues_) return fail(ioStatus::misuse);
    output_.moveTo(putName(output_.room(3 * ioFormat::longestToken + ioNameTable::longestName), value));
}

char* ioWriteContext::putName(char* to, std::string_view name) {
    std::size_t const place = names_->findShort(name);
    return place == ioImpl::NameIndex::none ? putOtherName(to, name)
                                            : ioFormat::putToken(to, ioFormat::name, place + 1);
}

char* ioWriteContext::putOtherName(char* to, std::string_view name) {
    std::size_t const place = names_->find(name);
    if (place != ioImpl::NameIndex::none) return ioFormat::putToken(to, ioFormat::name, place + 1);
    name = name.substr(0, name.find('\0'));
    if (name.size() <= ioNameTable::longestName) {
        names_->remember(name);
        to = ioFormat::putToken(to, ioFormat::name, 0);
    }
    return putValue(to, name);
}
