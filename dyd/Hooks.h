// Observers of dynamic calls.
#pragma once

#include "dyd/Arg.h"
#include "foundation/ur/containers.h"

namespace nxDYD {

class Function;

/// Sees the calls of the functions that it is attached to. Here it does nothing: derive from it and override.
///
/// What a hook throws goes to the caller; nothing of the call that would follow is run.
class NX_API Hooks : public ur::ReferenceCount {
public:
    Hooks() noexcept = default;
    Hooks(Hooks const&) noexcept = default;
    Hooks& operator=(Hooks const&) noexcept = default;
    ~Hooks() override = default;

    /// Before `function` runs. May change the arguments, also their number.
    virtual void preInvoke(Function* /*function*/, ur::vector<ur::Reference<Arg>>& /*args*/) {}
    /// After `function` has returned `result`, which may be null. Not called when it has thrown.
    virtual void postInvoke(Function* /*function*/, ur::vector<ur::Reference<Arg>> const& /*args*/,
                            Arg const* /*result*/) {}
};

}  // namespace nxDYD
