// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace ur {

class Account;
class BlockAllocator;
struct BudgetSpent;
class Charge;
class ImplBase;
template <class Block, class Type>
class MapIterator;
struct NodeAllocated;
template <class T>
struct NodeAllocator;
class NodeBatch;
class NodeSource;
template <class T>
class Reference;
class ReferenceCount;
template <class T>
class Sequence;
class TypeInfo;
template <class T>
struct less;

}  // namespace ur
