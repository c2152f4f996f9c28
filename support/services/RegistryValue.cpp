// Holds one item.
#include "support/services/RegistryValue.h"

#include <utility>

#include "foundation/nxRFL/Reader.h"
#include "foundation/nxRFL/Writer.h"

namespace nxSupport {

RegistryValue::RegistryValue(nxRFL::Stack* stack) : stack_(stack) {
    if (stack && nxRFL::Reader(*stack).isNull()) stack_.reset();
}

nxRFL::Stack const* RegistryValue::getItem() const {
    if (!stack_) {
        stack_ = std::make_shared<nxRFL::Stack>();
        nxRFL::Writer(*stack_).writeNull();
    }
    return stack_.get();
}

}  // namespace nxSupport

namespace nxRFL {

void read(Reader& reader, nxSupport::RegistryValue& value) {
    auto stack = std::make_unique<Stack>();
    reader.readItem(*stack);
    value = nxSupport::RegistryValue(stack.release());
}

void write(Writer& writer, nxSupport::RegistryValue const& value) {
    if (value) {
        writer.writeItem(*value.getItem());
    } else {
        writer.writeNull();
    }
}

}  // namespace nxRFL
