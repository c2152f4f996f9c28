// Objects from items.
#pragma once

#include <functional>
#include <map>
#include <unordered_map>

#include "plst/Path.h"
#include "support/documents/Document.h"

namespace nxSupport::impl {

/// Makes the objects of a file, a copy or a journal, beside those of the document: in no tree, told of to nobody.
///
/// Items may come from anywhere; they are shared, not copied. After a fault all objects are gone with the reader.
class ObjectReader {
public:
    enum class Identities { kept, fresh };
    /// A recovered document is modified until it is saved.
    enum class Origin { saved, recovered };
    /// Called with the part that is done; false cancels.
    using Progress = std::function<bool(double)>;

    ObjectReader(Document& document, Identities identities, Progress progress = {})
        : document_(document), identities_(identities), progress_(std::move(progress)) {}
    ObjectReader(ObjectReader const&) = delete;
    ObjectReader& operator=(ObjectReader const&) = delete;

    /// False after a fault.
    [[nodiscard]] bool read(ur::Reference<nxPLST::Item> const& file);

    [[nodiscard]] ur::vector<ur::Reference<Object>> const& objects() const noexcept { return tops_; }
    /// Whether there is one object, which can be the root of the document; otherwise a fault.
    [[nodiscard]] bool checkRoot();
    /// Takes the only object as the root of the document and clears the history; the former objects have no document
    /// any more. False, with no change, when the history is busy. Passes on what listeners throw, when all is done.
    [[nodiscard]] bool install(Origin origin);
    /// Enters the objects, which have fresh identities, into the document.
    void enter();

    /// What is wrong: the object, the property, the reason.
    [[nodiscard]] urString::CString const& fault() const noexcept { return fault_; }
    /// Where, in the item that was read.
    [[nodiscard]] nxPLST::Path const& faultPath() const noexcept { return faultPath_; }
    [[nodiscard]] bool isCancelled() const noexcept { return isCancelled_; }

private:
    /// An array of objects that is being read.
    struct Open {
        Object* parent;  ///< null at the top
        ur::Reference<nxPLST::Array const> items;
        std::size_t next;
    };
    struct Identity {
        urOS::Uuid id;
        Object** place = nullptr;  ///< in `index_`; null for a fresh one
    };
    struct KnownClass {
        ur::Reference<ObjectClass const> objectClass;
        bool needsUpgrade = false;
        ObjectClass::Versions versions;  ///< of the content of its objects in the file
    };

    [[nodiscard]] bool readHead(nxPLST::Dictionary const& file);
    void enterArray(Object* parent, ur::Reference<nxPLST::Array const> const& items);
    [[nodiscard]] bool readVersions(ur::Reference<nxPLST::Item> const& item, ObjectClass::Versions& versions);
    [[nodiscard]] bool readTrees();
    [[nodiscard]] bool readObject(nxPLST::Item const* item);
    [[nodiscard]] bool readId(nxPLST::Dictionary const& item, Identity& identity);
    /// Null after a fault.
    [[nodiscard]] KnownClass const* readClass(nxPLST::Dictionary const& item);
    [[nodiscard]] KnownClass const* addClass(urString::CString const& key, urString::CString const& name,
                                             ObjectClass::Versions const& own);
    [[nodiscard]] bool readValues(KnownClass const& known, ur::Reference<nxPLST::Dictionary>& values);
    [[nodiscard]] bool checkValues(ObjectClass const& objectClass, nxPLST::Dictionary const& values);
    Object& make(KnownClass const& known, Identity const& identity, ur::Reference<nxPLST::Dictionary> values);
    void leadReferencesToCopies();
    [[nodiscard]] bool report();
    bool fail(urString::CString const& what, char const* key = nullptr, urString::CString const& property = {});
    bool failFile(urString::CString const& what, char const* key = nullptr);
    [[nodiscard]] urString::CString objectText() const;

    Document& document_;
    Identities const identities_;
    Progress const progress_;
    ObjectClass::Versions versions_;
    std::map<urString::CString, KnownClass> classes_;  ///< by name, with the versions that objects state themselves
    std::size_t versionCount_ = 0;                     ///< in `classes_`
    ur::vector<Open> open_;
    nxPLST::Item const* current_ = nullptr;                              ///< the object that is being read
    std::unordered_map<urOS::Uuid, urOS::Uuid, urOS::UuidHash> copies_;  ///< the new identity for each one read
    Document::Index index_;                                              ///< of objects that keep their identities
    ur::vector<Object*> made_;
    ur::vector<ur::Reference<Object>> tops_;
    urString::CString fault_;
    nxPLST::Path faultPath_;
    bool isCancelled_ = false;
};

}  // namespace nxSupport::impl
