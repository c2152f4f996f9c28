// A script's function that hears of all changes of an object or a document.
#pragma once

#include "foundation/nxRFL/Callback.h"
#include "foundation/nxRFL/Writer.h"
#include "foundation/ur/Account.h"
#include "foundation/ur/ReferenceCount.h"
#include "support/documents/Document.h"

namespace nxhost {

/// Calls the function with "changed", object, name and value; "inserted" or "removed", parent, index and child;
/// "moved", parent, former index, index and child; for a document also "opened" and "selected". Indices count from 1.
/// The function is called until it returns false. Owned by the signals of what it listens to.
class ObjectListener final : public ur::ReferenceCount {
public:
    using Object = nxSupport::Object;

    ObjectListener(ur::Reference<nxRFL::Function> function, ur::Charge charge)
        : callback_(std::move(function)), charge_(std::move(charge)) {}

    static void connect(Object& object, ur::Reference<nxRFL::Function> const& function, ur::Charge charge);
    static void connect(nxSupport::Document& document, ur::Reference<nxRFL::Function> const& function,
                        ur::Charge charge);

private:
    template <class Source>
    static void follow(Source& source, ur::Reference<ObjectListener> const& listener);

    void changed(Object& object, urString::CString const& name);
    void child(char const* event, Object& parent, std::size_t index, Object& child);
    void moved(Object& parent, std::size_t from, std::size_t to, Object& child);
    void event(char const* name);
    void call(nxRFL::Stack const& arguments);

    nxRFL::Callback callback_;
    ur::Charge charge_;
};

}  // namespace nxhost
