// Values that hold for the duration of a scope.
#pragma once

#include <cstdint>
#include <utility>

namespace urKRCache {

/// Sets a variable for the duration of a scope.
template <class T>
class Scoped {
public:
    Scoped(T& variable, T value) noexcept : variable_(variable), former_(std::exchange(variable, value)) {}
    Scoped(Scoped const&) = delete;
    Scoped& operator=(Scoped const&) = delete;
    ~Scoped() { variable_ = former_; }

private:
    T& variable_;
    T former_;
};

/// Adds to a counter for the duration of a scope.
class Reservation {
public:
    Reservation(std::uint64_t& counter, std::uint64_t bytes) noexcept : counter_(counter), bytes_(bytes) {
        counter_ += bytes_;
    }
    Reservation(Reservation const&) = delete;
    Reservation& operator=(Reservation const&) = delete;
    ~Reservation() { counter_ -= bytes_; }

private:
    std::uint64_t& counter_;
    std::uint64_t bytes_;
};

}  // namespace urKRCache
