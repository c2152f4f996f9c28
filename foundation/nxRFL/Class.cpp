// Classes, their members and their inheritance.
#include "foundation/nxRFL/Class.h"

#include <algorithm>

namespace nxRFL {

Member const* MemberList::find(urString::CString const& name) const noexcept {
    auto const found = std::ranges::find(members_, name, &Member::name);
    return found == members_.end() ? nullptr : &*found;
}

void MemberList::add(Member member) {
    auto const found = std::ranges::find(members_, member.name, &Member::name);
    if (found == members_.end()) {
        members_.push_back(std::move(member));
    } else {
        std::swap(*found, member);
        replaced_.push_back(std::move(member));
    }
}

Class::Class(urString::CString name, impl::TypeUtil const& util)
    : name_(std::move(name)), util_(util), type_(util.staticType()) {}

Member const* Class::findMember(urString::CString const& name) const noexcept {
    if (Member const* const own = members_.find(name)) return own;
    for (Base const& link : bases_) {
        if (Member const* const inherited = link.base->findMember(name)) return inherited;
    }
    return nullptr;
}

Member const* Class::otherNames() const noexcept {
    if (!otherNames_.empty()) return &*otherNames_.begin();
    for (Base const& link : bases_) {
        if (Member const* const inherited = link.base->otherNames()) return inherited;
    }
    return nullptr;
}

void* Class::castToBase(void* object, ur::TypeInfo type) const noexcept {
    for (Base const& link : bases_) {
        void* const asBase = link.toBase ? link.toBase(object) : object;
        if (void* const result = link.base->cast(asBase, type)) return result;
    }
    return nullptr;
}

bool Class::isA(Class const& other) const noexcept {
    return this == &other || std::ranges::any_of(bases_, [&](Base const& link) { return link.base->isA(other); });
}

}  // namespace nxRFL
