// One step from the press of a button to its release.
#pragma once

#include <utility>

#include "foundation/nxTXN/Transaction.h"
#include "support/documents/Document.h"

namespace nxSupport {

/// A drag, a stroke of a brush or the like: all its changes are one step of the history, or none.
///
///     drag_.emplace(domain, document, "Move");                     // the button is pressed
///     drag_->perform([&] { object.set("place", mouse); });         // the mouse moves
///     drag_->finish();                                             // released; or drag_.reset() on Escape
///
/// Begins and ends contexts of the modes for interactions on the domain, whose owner passes them to the document as
/// `Document::beginContext` says. While it is open, documents are not saved and nothing is undone. Main thread only;
/// the domain and the document outlive it.
class NX_API Interaction {
public:
    /// `name` is the name of the step.
    Interaction(Domain& domain, Document& document, urString::CString const& name);
    Interaction(Interaction const&) = delete;
    Interaction& operator=(Interaction const&) = delete;
    /// Takes everything back unless it has finished. Reports exceptions instead of throwing them.
    ~Interaction();

    /// Runs `change` in a context. What it throws takes back the changes of this call and passes to the caller.
    template <class Change>
    void perform(Change&& change) {
        Context const context(&domain_, Context::InteractionPerform);
        std::forward<Change>(change)();
    }
    /// Ends it as a step. False when it has ended already.
    bool finish();

private:
    void end();

    Domain& domain_;
    nxTXN::Transaction transaction_;
    bool isOpen_ = true;
};

}  // namespace nxSupport
