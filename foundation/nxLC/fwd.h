// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxLC {

struct Completion;
enum class Library;
struct Limits;
class ReflectionData;
class StackChecker;
class State;
class ValueSink;

}  // namespace nxLC
