// Changes the limit and samples the resident size.
#include "krcache/impl/Budget.h"

namespace urKRCache {

void Budget::setLimit(std::uint64_t bytes) noexcept {
    unmet_ = 0;
    moveLimit(bytes);
}

void Budget::reserveExternal(unsigned bytes) noexcept {
    std::uint64_t const given = limit_ == 0 ? 0 : std::min<std::uint64_t>(bytes, limit_ - 1);
    if (limit_ != 0) unmet_ += bytes - given;
    moveLimit(limit_ - given);
}

void Budget::releaseExternal(unsigned bytes) noexcept {
    std::uint64_t const paidBack = std::min<std::uint64_t>(bytes, unmet_);
    unmet_ -= paidBack;
    moveLimit(limit_ == 0 ? 0 : limit_ + bytes - paidBack);
}

void Budget::moveLimit(std::uint64_t bytes) noexcept {
    limit_ = bytes;
    bound_ = bytes == 0 ? noBound : static_cast<std::int64_t>(std::min<std::uint64_t>(bytes, noBound));
}

void Budget::sampleResidentSize(std::uint64_t incoming) {
    bytesSinceSample_ += incoming == 0 ? tuning_.sampleInterval / 10 : incoming;
    if (bytesSinceSample_ <= tuning_.sampleInterval) return;
    measureOtherResident();
    bytesSinceSample_ = 0;
}

void Budget::measureOtherResident() {
    std::uint64_t const ours = residentialUsed_.total + residentialReserved_;
    otherResident_ = static_cast<std::int64_t>(tuning_.residentSize()) - static_cast<std::int64_t>(ours);
}

}  // namespace urKRCache
