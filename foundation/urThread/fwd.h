// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace urThread {

class Buffer;
class ReferenceCount;
class RunQueue;
class Runnable;
class Thread;

}  // namespace urThread
