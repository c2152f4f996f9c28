// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxNet {

template <class... Arguments>
class CallbackSlot;
class Connection;
class Manager;
class Request;

}  // namespace nxNet
