// A comparable, copyable identity of a class.
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <string>
#include <typeinfo>

#include "foundation/ur/Export.h"

namespace ur {

/// The run-time identity of a class, one pointer wide: a key of maps and of service look-ups.
///
/// Identities of one class taken in different shared libraries are equal. The order is the platform's
/// collation order: total and fixed within a run, but not alphabetical.
class NX_API TypeInfo {
public:
    /// The identity of no class: `void`.
    TypeInfo() noexcept : info_(&typeid(void)) {}
    TypeInfo(std::type_info const& info) noexcept : info_(&info) {}

    template <class T>
    [[nodiscard]] static TypeInfo of() noexcept {
        return TypeInfo(typeid(T));
    }
    /// The dynamic class of a polymorphic object.
    template <class T>
    [[nodiscard]] static TypeInfo of(T const& object) noexcept {
        return TypeInfo(typeid(object));
    }

    /// The platform's name of the type (mangled where the platform mangles).
    [[nodiscard]] char const* name() const noexcept { return info_->name(); }
    /// The name in source form, namespace included; the platform's name if it cannot be demangled.
    [[nodiscard]] std::string readableName() const;
    [[nodiscard]] std::size_t hash() const noexcept { return info_->hash_code(); }

    friend bool operator==(TypeInfo a, TypeInfo b) noexcept { return *a.info_ == *b.info_; }
    friend std::strong_ordering operator<=>(TypeInfo a, TypeInfo b) noexcept {
        if (a == b) return std::strong_ordering::equal;
        return a.info_->before(*b.info_) ? std::strong_ordering::less : std::strong_ordering::greater;
    }

private:
    std::type_info const* info_;
};

}  // namespace ur

template <>
struct std::hash<ur::TypeInfo> {
    std::size_t operator()(ur::TypeInfo info) const noexcept { return info.hash(); }
};
