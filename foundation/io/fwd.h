// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

class ioBufferedStreamInput;
class ioBufferedStreamOutput;
class ioClientReadContext;
class ioClientWriteContext;
template <class T>
class ioMemberReadCallback;
class ioNameTable;
class ioPacketRegistry;
class ioPacketType;
enum class ioPacketTypeId : int;
class ioReadCallback;
class ioReadContext;
class ioSimplePacketRegistry;
class ioSimplePacketType;
enum class ioStatus : int;
class ioWriteContext;
