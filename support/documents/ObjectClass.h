// A class of objects, as its catalog holds it.
#pragma once

#include <utility>

#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "support/documents/ClassDescription.h"

namespace nxSupport {

/// A description that was found to be right, with all that comes from its bases. Never changes.
///
/// Files may hold objects of classes that the catalog does not have, or of newer versions: their classes are made when
/// the file is opened. An unknown class has no properties, may be anywhere, and may hold anything. Main thread only.
class NX_API ObjectClass final : public ur::ReferenceCount {
public:
    using Versions = ur::map<urString::CString, unsigned, ur::less<urString::CString>>;

    [[nodiscard]] urString::CString const& name() const noexcept { return description_.name; }
    /// Null when there is none.
    [[nodiscard]] ObjectClass const* base() const noexcept { return base_.get(); }
    /// False for a class that only a file names.
    [[nodiscard]] bool isKnown() const noexcept { return isKnown_; }
    /// Whether objects of this class have the content that the catalog describes. False for a newer version.
    [[nodiscard]] bool isCurrent() const noexcept { return isCurrent_; }
    /// Of the content of its objects: of this class and its bases, of an unknown class of all that its file names.
    [[nodiscard]] Versions const& versions() const noexcept { return versions_; }

    /// Those of the bases first.
    [[nodiscard]] ur::vector<PropertyDescription> const& properties() const noexcept { return properties_; }
    /// Null when no property has that name.
    [[nodiscard]] PropertyDescription const* find(urString::CString const& property) const noexcept;
    /// Whether it is the class of that name, or derived from it.
    [[nodiscard]] bool isA(urString::CString const& name) const noexcept;
    /// Whether objects of class `child` may be children of objects of this class.
    [[nodiscard]] bool mayContain(ObjectClass const& child) const noexcept;
    /// Brings values of earlier versions, those in `versions`, to the present one. Throws what upgrade functions throw.
    void upgrade(nxPLST::Dictionary& values, Versions const& versions) const;
    /// Whether one of these versions of the class or its bases is earlier.
    [[nodiscard]] bool hasChangedSince(Versions const& versions) const noexcept;

private:
    friend class ObjectCatalog;

    /// A class of a catalog.
    ObjectClass(ClassDescription description, ur::Reference<ObjectClass const> base);
    /// A class that only a file names.
    ObjectClass(urString::CString name, Versions versions);
    /// The newer versions of `known`.
    ObjectClass(ObjectClass const& known, Versions const& versions);

    ClassDescription description_;
    ur::Reference<ObjectClass const> base_;
    ur::vector<PropertyDescription> properties_;
    ur::map<urString::CString, std::size_t, ur::less<urString::CString>> places_;  ///< in `properties_`
    Versions versions_;
    bool isKnown_ = true;
    bool isCurrent_ = true;
};

}  // namespace nxSupport
