// Destroys managers.
#include "net/Manager.h"

namespace nxNet {

Manager::~Manager() = default;

}  // namespace nxNet
