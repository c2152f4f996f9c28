// Copies, compares and destroys arrays without recursion.
#include "plst/Array.h"

#include "plst/impl/treeWalk.h"

namespace nxPLST {

Array::~Array() { impl::dismantle(array_); }
void Array::clear() noexcept { impl::dismantle(array_); }
ur::Reference<Item> Array::onClone() const { return impl::cloneTree(*this); }
bool Array::onCongruent(Item const& other) const { return impl::congruentTrees(*this, other); }

}  // namespace nxPLST
