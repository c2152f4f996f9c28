// Reads containers, objects and functions, and describes where an item is wrong.
#include "foundation/nxRFL/Reader.h"

#include <cmath>
#include <limits>
#include <utility>

#include "foundation/nxRFL/Database.h"
#include "foundation/nxRFL/Parameter.h"
#include "foundation/nxRFL/Writer.h"

namespace nxRFL {

using impl::Container;
using impl::nowhere;
using impl::Value;
using urString::CString;

std::size_t Reader::behind(std::size_t at) const noexcept {
    auto const* const container = std::get_if<Container>(&stack_.values_[at]);
    return at + (container ? container->length : 1);
}

double Reader::readWhole(double least, double greatest) {
    double const* const value = next<double>();
    if (!value) fail("number");
    if (*value >= least && *value <= greatest && *value == std::trunc(*value)) {
        ++at_;
        return *value;
    }
    complain(CString::format("must be a whole number from %.0f to %.0f, but is %.14g", least, greatest, *value));
}

int Reader::readInt() {
    return static_cast<int>(readWhole(std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

unsigned Reader::readUnsigned() { return static_cast<unsigned>(readWhole(0, std::numeric_limits<unsigned>::max())); }

unsigned Reader::enter(Container::Kind kind, std::string_view expected) {
    auto const* const container = next<Container>();
    if (!container || (container->kind != kind && container->items > 0)) fail(expected);
    open_ = at_++;
    return container->items;
}

void Reader::leave() noexcept {
    at_ = end();
    open_ = head().enclosing(open_);
}

void* Reader::readObjectOrNull(ur::TypeInfo type) {
    if (isNull()) {
        ++at_;
        return nullptr;
    }
    return readObject(type);
}

void* Reader::readObjectOrNull(Class const& expected) { return readObjectOrNull(expected.getType()); }

void* Reader::readObject(ur::TypeInfo type) {
    Object const* const object = next<Object>();
    void* const result = object ? cast(*object, type) : nullptr;
    if (!result) [[unlikely]]
        fail(nameOf(type));
    Class const* const known = object->getClass();
    if (known && !known->isAlive(object->pointer())) [[unlikely]]
        complain(CString::format("must not be a %s that has gone", known->name().c_str()));
    ++at_;
    return result;
}

void* Reader::cast(Object const& object, ur::TypeInfo type) const {
    if (Class const* const known = object.getClass()) return known->cast(object.pointer(), type);
    if (object.typeUtil().staticType() == type) return object.pointer();
    if (!function_) return nullptr;
    Database::Resolved const resolved = function_->getDB()->resolve(object);
    return resolved.objectClass->cast(resolved.pointer, type);
}

Object const& Reader::readAnyObject() {
    static Object const none;
    if (isNull()) {
        ++at_;
        return none;
    }
    return take<Object>("object");
}

ur::Reference<Function> const& Reader::readFunction() {
    static ur::Reference<Function> const none;
    if (isNull()) {
        ++at_;
        return none;
    }
    return take<ur::Reference<Function>>("function");
}

void Reader::readItem(Stack& out) {
    if (at_ >= end()) fail("a value");
    if (stack_.charge_) out.chargeTo(stack_.charge_.account());
    Writer(out).writeItemAt(stack_, at_);
    skip();
}

void Reader::skip() noexcept {
    if (at_ < end()) at_ = behind(at_);
}

void Reader::fail(std::string_view expected) const {
    CString complaint("must be ");
    complaint.append(expected).append(", but is ").append(found());
    complain(complaint);
}

void Reader::complain(std::string_view complaint) const { raise(placeOf(at_, open_), complaint); }

void Reader::failOnKey(std::string_view name, std::string_view key, std::string_view hint) const {
    CString complaint("is no ");
    complaint.append(name).append(": \"").append(key).append("\" is one key too many").append(hint);
    raise(open_ == nowhere ? CString() : placeOf(open_, head().enclosing(open_)), complaint);
}

void Reader::raise(CString const& place, std::string_view complaint) const {
    CString message;
    if (function_ && (readsResults_ || !function_->name().empty())) message.append(function_->describe()).append(": ");
    throw Exception(message.append(place).append(" ").append(complaint));
}

CString Reader::found() const {
    constexpr char const* names[] = {"missing", "null",       "boolean", "number",  "string",
                                     "array",   "dictionary", "",        "function"};
    if (Object const* const object = next<Object>()) return classNameOf(*object);
    return names[static_cast<int>(kind())];
}

CString Reader::classNameOf(Object const& object) const {
    return object.getClass() ? object.getClass()->name() : nameOf(object.typeUtil().staticType());
}

CString Reader::nameOf(ur::TypeInfo type) const {
    return function_ ? function_->getDB()->nameOf(type) : CString(type.readableName());
}

CString Reader::outermostPlace(unsigned ordinal) const {
    if (readsResults_) return ordinal == 0 ? CString("the result") : CString::format("result %u", ordinal + 1);
    bool const isMethod = function_ && function_->isMethod();
    if (isMethod && ordinal == 0) return "the object";
    CString place = CString::format(function_ ? "argument %u" : "item %u", ordinal + (isMethod ? 0 : 1));
    unsigned const index = ordinal - (isMethod ? 1 : 0);
    if (function_ && index < function_->parameters().size()) {
        place.append(" (").append(function_->parameters()[index].name).append(")");
    }
    return place;
}

/// Such as "argument 2.max[3]", for the item at `at` in the container with the head at `container`. Works from the item
/// outwards without recursion, because scripts may nest containers to any depth.
CString Reader::placeOf(std::size_t at, std::size_t container) const {
    ur::vector<CString> steps;
    for (;;) {
        std::size_t item = container == nowhere ? 0 : container + 1;
        std::size_t before = item;
        unsigned ordinal = 0;
        for (; item < at; item = behind(item), ++ordinal) before = item;
        if (container == nowhere) {
            CString place = outermostPlace(ordinal);
            for (; !steps.empty(); steps.pop_back()) place.append(steps.back());
            return place;
        }
        Container const& head = std::get<Container>(stack_.values_[container]);
        if (head.kind == Container::Kind::array) {
            steps.push_back(CString::format("[%u]", ordinal + 1));
        } else if (ordinal % 2 == 1) {
            steps.push_back(CString(".").append(std::get<CString>(stack_.values_[before])));
        }
        at = std::exchange(container, head.enclosing(container));
    }
}

}  // namespace nxRFL
