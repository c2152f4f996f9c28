// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

#include <cstdint>

namespace urKRCache {

class Accountant;
struct ClassUsage;
class KeyData;
class KeyVisitor;
enum class Leaving : std::uint8_t;
class Manager;
class ManagerObserver;
class PageFileEntry;
class Resource;
class Shim;
struct Statistics;
struct StatisticsRow;
class TraceRecorder;

}  // namespace urKRCache
