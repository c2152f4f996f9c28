// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace urOS {

class AppOutput;
class AppOutputStream;
class AtomicFile;
class DebugChannel;
class File;
class Filename;
class FirstError;
class IOStream;
class MemoryIOStream;
class OStream;
class StopWatch;
class SysInfo;
class Uuid;
class UuidHash;

}  // namespace urOS
