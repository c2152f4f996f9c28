// Registers and looks up classes, and finds the class of an object.
#include "foundation/nxRFL/Database.h"

#include <cstdio>

#include "foundation/nxRFL/IteratorState.h"
#include "foundation/nxRFL/Stack.h"

namespace nxRFL {

Database::Database() {
    addClass(std::make_unique<Class>("nxRFL::Class", impl::borrowedType<Class>));
    addClass(std::make_unique<Class>("nxRFL::Stack", Stack::stackType()));
    Class& walks = addClass(std::make_unique<Class>("nxRFL::IteratorState", impl::ownableType<IteratorState>));
    walks.setHasHiddenSubclasses();
    walks.setCharge([](void* walk, std::shared_ptr<ur::Account> const& account) {
        static_cast<IteratorState*>(walk)->chargeTo(account);
    });
}

Database::~Database() = default;

Class* Database::getClass(urString::CString const& name) const noexcept { return classNamed(name); }

Class* Database::classNamed(std::string_view name) const noexcept {
    auto const found = classesByName_.find(name);
    return found == classesByName_.end() ? nullptr : found->second;
}

Class* Database::getClass(ur::TypeInfo type) const noexcept {
    auto const found = classesByType_.find(type);
    return found == classesByType_.end() ? nullptr : found->second;
}

Class& Database::addClass(std::unique_ptr<Class> added) {
    if (Class* const known = getClass(added->name())) return *known;
    added->index_ = classes_.size();
    Class& result = *classes_.emplace_back(std::move(added));
    classesByName_.emplace(result.name(), &result);
    classesByType_.emplace(result.getType(), &result);
    forgetSeenTypes();
    return result;
}

Database::Table* Database::getTable(urString::CString const& name) const noexcept { return tableNamed(name); }

Database::Table* Database::tableNamed(std::string_view name) const noexcept {
    for (auto const& table : tables_) {
        if (table->name == name) return table.get();
    }
    return nullptr;
}

Database::Table& Database::addTable(urString::CString const& name) {
    if (Table* const known = getTable(name)) return *known;
    return *tables_.emplace_back(new Table{name, {}});
}

Database::Resolved Database::resolve(Object const& object) const {
    if (object.isExact()) return {object.getClass(), object.pointer()};
    Class const* const handed = object.getClass() ? object.getClass() : getClass(object.typeUtil().staticType());
    if (!handed) throw Exception(nameOf(object.typeUtil().staticType()) + " is not registered");
    auto const dynamicType = handed->typeUtil().dynamicType;
    ur::TypeInfo const type = dynamicType ? dynamicType(object.pointer()) : handed->getType();
    if (type == handed->getType()) return {handed, object.pointer()};

    auto const bytes = static_cast<char*>(object.pointer());
    auto const seen = handed->seen_.find(type);
    if (seen != handed->seen_.end()) return {seen->second.as, bytes + seen->second.offset};
    Resolved const result = nearest(*handed, object.pointer(), getClass(type));
    handed->seen_.emplace(type, Class::Seen{result.objectClass, static_cast<char*>(result.pointer) - bytes});
    return result;
}

/// `exact` is the class of the object's own type, or null.
Database::Resolved Database::nearest(Class const& declared, void* object, Class const* exact) {
    for (Class const* const derived : declared.derived_) {
        if (exact && !exact->isA(*derived)) continue;
        for (Class::Base const& link : derived->bases_) {
            if (link.base != &declared || !(exact || link.toThis)) continue;
            void* const asDerived = link.toThis ? link.toThis(object) : object;
            if (!asDerived) continue;
            Resolved const result = nearest(*derived, asDerived, exact);
            if (result.objectClass == exact || result.objectClass->hasHiddenSubclasses()) return result;
        }
    }
    return {&declared, object};
}

void Database::forgetSeenTypes() noexcept {
    for (auto const& known : classes_) known->seen_.clear();
}

urString::CString Database::nameOf(ur::TypeInfo type) const {
    Class const* const known = getClass(type);
    return known ? known->name() : urString::CString(type.readableName());
}

void Database::setErrorHandler(std::function<void(Exception const&)> handler) { errorHandler_ = std::move(handler); }

void Database::reportError(Exception const& error) const {
    if (auto const handler = errorHandler_) return handler(error);
    std::fprintf(stderr, "%s\n%s\n", error.message().c_str(), error.trace().c_str());
}

}  // namespace nxRFL
