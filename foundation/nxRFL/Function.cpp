// What functions have in common.
#include "foundation/nxRFL/Function.h"

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Reader.h"

namespace nxRFL {

using urString::CString;

Function::~Function() = default;

bool Function::onCallPlain(std::span<PlainValue const> /*arguments*/, PlainResult& /*result*/) const { return false; }

bool Function::givesSeveral() const noexcept { return !signature_.empty() && signature_.front().startsWith("object["); }

void Function::failArity(Stack const& arguments, unsigned count) const {
    CString message = name_.empty() ? CString("the function") : name_;
    if (isMethod_ && Reader(arguments).kind() != Kind::object)
        throw Exception(message.append(" must be called on an object: object:name(...)"));
    unsigned const object = isMethod_ ? 1 : 0;
    unsigned const expected = count - object;
    throw Exception(message.append(CString::format(" takes %u argument%s, but got %u", expected,
                                                   expected == 1 ? "" : "s", arguments.size() - object)));
}

}  // namespace nxRFL
