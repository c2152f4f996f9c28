// The framework's containers: standard sequences, and an ordered map for small dictionaries.
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

/// The default order of maps: the type's own `<`.
template <class T>
struct less {
    bool operator()(T const& a, T const& b) const { return a < b; }
};

/// An ordered map with unique keys: `operator[]` finds or inserts, iteration is in ascending order.
template <class Key, class Value, class Less = less<Key>>
using map = BlockMap<Key, Value, Less>;

}  // namespace ur
