// The classes that the objects of a program can have.
#pragma once

#include "foundation/urUtil/Error.h"
#include "support/documents/ObjectClass.h"

namespace nxSupport {

/// Holds the descriptions of classes. The program makes one, fills it, and keeps it alive as long as its documents.
/// Main thread only.
class NX_API ObjectCatalog {
public:
    ObjectCatalog() = default;
    ObjectCatalog(ObjectCatalog const&) = delete;
    ObjectCatalog& operator=(ObjectCatalog const&) = delete;

    /// Adds a class after its base. The error names the mistake: a name that is missing or used twice, a base or child
    /// class that is not known, a default that its range, step or choices exclude. The class is not added then.
    urUtil::Error add(ClassDescription description);
    /// Null when no class has that name.
    [[nodiscard]] ur::Reference<ObjectClass const> find(urString::CString const& name) const noexcept;

    /// The class for objects of a file in which the classes have these versions: that of the catalog, or a class of
    /// its own for objects that are newer or unknown. Never null.
    [[nodiscard]] ur::Reference<ObjectClass const> classFor(urString::CString const& name,
                                                            ObjectClass::Versions const& versions) const;

private:
    ur::map<urString::CString, ur::Reference<ObjectClass const>, ur::less<urString::CString>> classes_;
};

}  // namespace nxSupport
