// A named operation that is called with items.
#pragma once

#include "dyd/Arg.h"
#include "dyd/Hooks.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"

namespace nxDYD {

class Invocation;

/// The base of operations that a host offers by name. Held by reference.
///
/// Derive from it and implement `onCall`. A running call keeps the function and its hooks alive.
class NX_API Function : public ur::ReferenceCount {
public:
    explicit Function(urString::CString const& name) : name_(name) {}
    /// The copy shares the hooks.
    Function(Function const&) = default;
    Function& operator=(Function const&) = default;
    ~Function() override;

    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }

    /// Later calls notify `hooks`, which replace the previous hooks; null for none.
    void setHooks(ur::Reference<Hooks> hooks) noexcept { hooks_.swap(hooks); }
    void clearHooks() noexcept { hooks_.reset(); }

    /// Runs the function now. The result may be null; exceptions of the function or a hook pass through.
    ur::Reference<Arg> call(ur::vector<ur::Reference<Arg>>& args);
    /// A call without arguments, which runs when the result is destroyed.
    Invocation call();

protected:
    /// The operation itself. May change the arguments and return null.
    virtual ur::Reference<Arg> onCall(ur::vector<ur::Reference<Arg>>& args) = 0;

private:
    urString::CString name_;
    ur::Reference<Hooks> hooks_;
};

}  // namespace nxDYD
