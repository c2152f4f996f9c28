// Test helpers that write values to a stack and read them back.
#pragma once

#include <gtest/gtest.h>

#include "foundation/nxRFL/values.h"

namespace nxRFL::test {

template <class T>
Stack written(T const& value) {
    Stack stack;
    Writer writer(stack);
    write(writer, value);
    return stack;
}

/// Reads the value over `into` and returns it.
template <class T>
T readBack(Stack const& stack, T into = {}) {
    Reader reader(stack);
    read(reader, into);
    EXPECT_EQ(reader.kind(), Kind::none);
    return into;
}

}  // namespace nxRFL::test
