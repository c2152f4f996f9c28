// Charges stacks and destroys stacks that hold each other.
#include "foundation/nxRFL/Stack.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace nxRFL {

using impl::Value;
using urString::CString;

namespace {

/// The storage that a cleared stack keeps.
constexpr std::size_t mostKeptValues = 256;

}  // namespace

Stack::Stack(Stack&& other) noexcept
    : values_(std::move(other.values_)), items_(std::exchange(other.items_, 0)), charge_(std::move(other.charge_)) {
    other.values_.clear();
}

Stack& Stack::operator=(Stack other) noexcept {
    values_.swap(other.values_);
    std::swap(items_, other.items_);
    std::swap(charge_, other.charge_);
    return *this;
}

void Stack::clear() noexcept {
    dismantle();
    if (values_.capacity() > mostKeptValues) ur::vector<Value>().swap(values_);
    charge_.set(sizeof(Stack) + values_.capacity() * sizeof(Value));
}

std::size_t Stack::bytesOf(Value const& value) noexcept {
    auto const* const text = std::get_if<CString>(&value);
    return text ? ownedBytes(*text) : 0;
}

void Stack::chargeValue(std::size_t textBytes) {
    bool const isFull = values_.size() == values_.capacity();
    std::size_t const growth = isFull ? std::max<std::size_t>(values_.capacity(), 1) * sizeof(Value) : 0;
    if (textBytes + growth > 0) charge_.add(textBytes + growth);
}

void Stack::chargeValues(std::span<Value const> values, std::size_t capacity) {
    if (!charge_) return;
    std::size_t bytes = (std::max(capacity, values_.capacity()) - values_.capacity()) * sizeof(Value);
    for (Value const& value : values) bytes += bytesOf(value);
    charge_.add(bytes);
}

/// Stacks may hold each other in long chains, so this loop destroys the last of each without recursion.
void Stack::dismantle() noexcept {
    Stack* chain = nullptr;
    takeApart(chain);
    while (chain) {
        std::unique_ptr<Stack> const last(chain);
        chain = last->next_;
        last->takeApart(chain);
    }
}

/// Releases everything, but adds stacks that only this one holds to the chain.
void Stack::takeApart(Stack*& chain) noexcept {
    for (Value const& value : values_) {
        auto const* const object = std::get_if<Object>(&value);
        if (!object || object->isBorrowed() || object->typeUtil().unref != &Stack::dropReference) continue;
        auto* const held = static_cast<Stack*>(object->pointer());
        object->passOn();
        if (!held->dropHolder()) continue;
        held->next_ = chain;
        chain = held;
    }
    values_.clear();
    items_ = 0;
}

bool Stack::dropHolder() noexcept { return --holders_.count == 0 && holders_.isGiven; }

void Stack::dropReference(void* stack) {
    auto* const held = static_cast<Stack*>(stack);
    if (held->dropHolder()) delete held;
}

/// Native code owns stacks, but a script may store a stack that it was given and release it later.
impl::TypeUtil const& Stack::stackType() noexcept {
    static constexpr impl::TypeUtil type = {
        .ref = [](void* object) { ++static_cast<Stack*>(object)->holders_.count; },
        .unref = &Stack::dropReference,
        .own =
            [](void* object) {
                impl::Holders& holders = static_cast<Stack*>(object)->holders_;
                holders.isGiven = true;
                ++holders.count;
            },
        .disown = &Stack::dropReference,
        .staticType = &ur::TypeInfo::of<Stack>,
        .dynamicType = &impl::dynamicType<Stack>,
    };
    return type;
}

}  // namespace nxRFL
