// The framework's containers: the standard sequences, and an ordered map made for small dictionaries.
#pragma once

#include <functional>
#include <list>
#include <utility>
#include <vector>

#include "foundation/ur/BlockMap.h"
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
template <class Key, class Value, class Less = less<Key>>
using map = BlockMap<Key, Value, Less>;

}  // namespace ur
