// The framework's containers: the standard sequences, and an ordered map made for small dictionaries.
#pragma once

#include <absl/container/btree_map.h>

#include <functional>
#include <list>
#include <utility>
#include <vector>

#include "foundation/ur/NodeHeap.h"

namespace ur {

template <class T>
using vector = std::vector<T>;

template <class T>
using list = std::list<T>;

/// The order that maps use by default: the type's own `<`.
template <class T>
struct less {
    bool operator()(T const& a, T const& b) const { return a < b; }
};

/// Ordered by key, unique keys, `operator[]` finds or inserts, walks in ascending order.
///
/// A B-tree of sorted blocks: a map of up to ten small entries is one block that grows 1, 2, 4, 8, 10.
/// Unlike `std::map`, inserting or erasing ends the validity of every iterator and reference into the map.
template <class Key, class Value, class Less = less<Key>>
using map = absl::btree_map<Key, Value, Less, NodeAllocator<std::pair<Key const, Value>>>;

}  // namespace ur
