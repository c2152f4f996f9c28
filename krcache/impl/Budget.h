// Counts the bytes of resources in memory against the limit.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "krcache/impl/ResourceBytes.h"
#include "krcache/impl/Tuning.h"
#include "krcache/impl/scopes.h"

namespace urKRCache {

/// Counts the bytes of a manager's resources and reports whether they exceed its limit.
///
/// Each counter is the sum of the sizes that resources reported when they came into memory, minus those they reported
/// when they left. In resident-size mode the limit bounds the resident size of the process plus what is not
/// residential.
class Budget {
public:
    explicit Budget(Tuning const& tuning) noexcept : tuning_(tuning) {}

    void add(unsigned size, bool residential) noexcept {
        used_.add(size);
        if (residential) residentialUsed_.add(size);
        peak_ = std::max(peak_, used_.total);
    }
    /// Subtracts a resource that leaves memory. It has `size` now and had `added` when it came.
    void take(unsigned size, unsigned added, bool residential) noexcept {
        used_.take(size, added);
        if (residential) residentialUsed_.take(size, added);
    }
    /// Reserves bytes that are about to be used, during its lifetime.
    class Room {
    public:
        Room(Budget& budget, std::uint64_t bytes, bool residential) noexcept
            : all_(budget.reserved_, bytes), resident_(budget.residentialReserved_, residential ? bytes : 0) {}

    private:
        Reservation const all_;
        Reservation const resident_;
    };

    /// 0 for no limit.
    [[nodiscard]] std::uint64_t limit() const noexcept { return limit_; }
    void setLimit(std::uint64_t bytes) noexcept;
    /// Lowers the limit because other code takes bytes; `giveBack` raises it again. The limit never becomes 0, which
    /// means no limit: the part that it cannot give up is remembered as a debt until bytes come back.
    void reserveExternal(unsigned bytes) noexcept;
    void releaseExternal(unsigned bytes) noexcept;
    [[nodiscard]] std::uint64_t used() const noexcept { return used_.total + reserved_; }
    [[nodiscard]] std::uint64_t usedByResources() const noexcept { return used_.total; }
    [[nodiscard]] std::uint64_t peak() const noexcept { return peak_; }
    [[nodiscard]] bool isOverLimit() const noexcept { return bounded() > bound_; }
    /// The bytes over the limit. Requires: over the limit.
    [[nodiscard]] std::uint64_t excess() const noexcept { return static_cast<std::uint64_t>(bounded() - bound_); }

    [[nodiscard]] bool usesResidentSize() const noexcept { return usesResidentSize_; }
    void useResidentSize() {
        usesResidentSize_ = true;
        measureOtherResident();
    }
    /// Measures the resident size again if enough bytes were requested since the last time.
    void sampleResidentSize(std::uint64_t incoming);

private:
    friend struct CacheProbe;  // for the tests only
    friend class Audit;

    static constexpr std::int64_t noBound = std::numeric_limits<std::int64_t>::max();

    void measureOtherResident();
    void moveLimit(std::uint64_t bytes) noexcept;
    [[nodiscard]] std::int64_t bounded() const noexcept { return static_cast<std::int64_t>(used()) + otherResident_; }

    Tuning const& tuning_;
    ResourceBytes used_;
    ResourceBytes residentialUsed_;  ///< the part of `used_` that is resident
    std::uint64_t peak_ = 0;
    std::uint64_t limit_ = 0;
    std::int64_t bound_ = noBound;  ///< the limit, if there is one
    std::uint64_t unmet_ = 0;       ///< bytes lent that exceeded the limit
    std::uint64_t reserved_ = 0;    ///< bytes that room is being made for
    std::uint64_t residentialReserved_ = 0;
    /// The resident size at the last sample, minus our part of it. Negative when resources claim more memory than they
    /// have touched.
    std::int64_t otherResident_ = 0;
    std::uint64_t bytesSinceSample_ = 0;
    bool usesResidentSize_ = false;
};

}  // namespace urKRCache
