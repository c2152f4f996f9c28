// Appends items and whole containers.
#include "foundation/nxRFL/Writer.h"

#include <algorithm>

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Function.h"
#include "foundation/nxRFL/values.h"

namespace nxRFL {

using impl::Container;
using impl::nowhere;
using impl::Value;

void impl::failOnInexact(std::string_view number) {
    throw Exception(
        urString::CString("the integer ").append(number).append(" is beyond 2^53 and equals no number of scripts"));
}

void Writer::closeAll() {
    while (open_ != nowhere) {
        Container const& container = head(open_);
        if (container.kind == Container::Kind::dictionary && container.items % 2 != 0) {
            // Only after an exception: an entry that has no value yet.
            head(open_).items -= 1;
            stack_.values_.pop_back();
        }
        close(container.kind);
    }
}

void Writer::writeFunction(ur::Reference<Function> function) {
    if (function) {
        append(std::move(function));
    } else {
        writeNull();
    }
}

void Writer::writeItemAt(Stack const& stack, std::size_t from) {
    if (from >= stack.values_.size()) return writeNull();
    ur::vector<Value>& values = stack_.values_;
    auto const* const container = std::get_if<Container>(&stack.values_[from]);
    std::size_t const length = container ? container->length : 1;
    std::size_t const at = values.size();
    if (open_ != nowhere) checkKey(std::holds_alternative<urString::CString>(stack.values_[from]));
    std::size_t const capacity =
        values.capacity() - at < length ? std::max(at + length, 2 * values.capacity()) : values.capacity();
    stack_.chargeValues({stack.values_.data() + from, length}, capacity);
    values.reserve(capacity);
    try {
        // By index and into the new storage: the source may be this stack itself.
        for (std::size_t i = 0; i < length; ++i) values.push_back(stack.values_[from + i]);
    } catch (...) {
        values.resize(at);
        throw;
    }
    if (container) head(at).parent = distanceToOpen(at);
    count();
}

std::uint32_t Writer::distanceToOpen(std::size_t at) const noexcept {
    return open_ == nowhere ? 0 : static_cast<std::uint32_t>(at - open_);
}

void Writer::checkKey(bool isText) const {
    Container const& container = head(open_);
    if (container.kind == Container::Kind::dictionary && container.items % 2 == 0 && !isText)
        throw Exception("the key of a dictionary must be a string");
}

void Writer::open(Container::Kind kind) {
    std::size_t const at = stack_.values_.size();
    append(Container{kind, 0, 1, distanceToOpen(at)});
    open_ = at;
}

void Writer::close(Container::Kind kind) {
    if (open_ == nowhere || head(open_).kind != kind) throw Exception("no such container is open");
    Container& container = head(open_);
    if (kind == Container::Kind::dictionary && container.items % 2 != 0)
        throw Exception("the last entry of a dictionary has no value");
    container.length = static_cast<std::uint32_t>(stack_.values_.size() - open_);
    open_ = container.enclosing(open_);
}

}  // namespace nxRFL
