// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace urRTB {

class Connection;
template <class... Args>
class Function;
class FunctionBase;
template <class F, class... Args>
class FunctionCallable;
template <class... Args>
class FunctionGlobal;
class ScopedBlock;
class ScopedConnection;
template <class... Args>
class Signal;
class SignalBase;
class SignalClient;

}  // namespace urRTB
