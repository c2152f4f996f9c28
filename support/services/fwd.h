// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxSupport {

class Cursor;
class CursorSlot;
class Debug;
class DebugPrint;
class PerfScope;
class Performance;
class Registry;
class RegistryValue;
class ScriptCallScope;
class Timeline;
class Transformer;
struct UnknownDebugCode;

}  // namespace nxSupport
