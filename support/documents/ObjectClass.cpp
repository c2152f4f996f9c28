// What a class has from its bases.
#include "support/documents/ObjectClass.h"

#include <algorithm>

namespace nxSupport {

using urString::CString;

ObjectClass::ObjectClass(ClassDescription description, ur::Reference<ObjectClass const> base)
    : description_(std::move(description)), base_(std::move(base)) {
    if (base_) {
        properties_ = base_->properties_;
        versions_ = base_->versions_;
    }
    properties_.insert(properties_.end(), description_.properties.begin(), description_.properties.end());
    for (std::size_t i = 0; i < properties_.size(); ++i) places_[properties_[i].name] = i;
    versions_[description_.name] = description_.version;
}

ObjectClass::ObjectClass(CString name, Versions versions)
    : versions_(std::move(versions)), isKnown_(false), isCurrent_(false) {
    description_.name = std::move(name);
}

ObjectClass::ObjectClass(ObjectClass const& known, Versions const& versions) : ObjectClass(known) {
    for (auto& [name, version] : versions_) {
        auto const newer = versions.find(name);
        if (newer != versions.end()) version = std::max(version, newer->second);
    }
    isCurrent_ = false;
}

PropertyDescription const* ObjectClass::find(CString const& property) const noexcept {
    auto const found = places_.find(property);
    return found == places_.end() ? nullptr : &properties_[found->second];
}

bool ObjectClass::isA(CString const& name) const noexcept {
    for (ObjectClass const* c = this; c; c = c->base()) {
        if (c->name() == name) return true;
    }
    return false;
}

bool ObjectClass::mayContain(ObjectClass const& child) const noexcept {
    if (!isKnown_ || !child.isKnown_) return true;
    for (ObjectClass const* c = this; c; c = c->base()) {
        if (std::ranges::any_of(c->description_.children, [&](CString const& name) { return child.isA(name); }))
            return true;
    }
    return false;
}

bool ObjectClass::hasChangedSince(Versions const& versions) const noexcept {
    return std::ranges::any_of(versions_, [&](auto const& mine) {
        auto const former = versions.find(mine.first);
        return former != versions.end() && former->second < mine.second;
    });
}

void ObjectClass::upgrade(nxPLST::Dictionary& values, Versions const& versions) const {
    if (base_) base_->upgrade(values, versions);
    auto const former = versions.find(name());
    if (former == versions.end() || former->second >= description_.version || !description_.upgrade) return;
    description_.upgrade(values, former->second);
}

}  // namespace nxSupport
