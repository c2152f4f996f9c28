// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxTXN {

class Clear;
struct FieldHandlers;
class HookError;
template <class T>
class ImmutableReference;
class Manager;
class Object;
template <class T>
class ObjectList;
class ObjectListBase;
struct ObjectSize;
class Reader;
class RefCountedObject;
class Restorer;
class Serializer;
class Transaction;
enum class TransactionKind;
enum class UnrecordedChange;
class Writer;

}  // namespace nxTXN
