// The document that scripts edit.
#pragma once

#include <map>
#include <span>

#include "foundation/nxRFL/Callback.h"
#include "foundation/nxRFL/Database.h"
#include "foundation/nxTXN/Transaction.h"
#include "script/ScriptValue.h"
#include "support/documents/Document.h"
#include "support/messaging/Domain.h"
#include "tools/nxhost/DescribedClasses.h"
#include "tools/nxhost/DocumentCharges.h"
#include "tools/nxhost/Options.h"
#include "tools/nxhost/Panel.h"

namespace nxhost {

/// What a crash left, for scripts.
struct RecoverableFile {
    urString::CString path;
    urString::CString name;
    double time = 0;  ///< in seconds since 1970
};
template <class Visit>
void listMembers(RecoverableFile& file, Visit&& visit) {
    visit("path", file.path), visit("name", file.name), visit("time", file.time);
}

/// A document as scripts see it. Its root holds their named values; `exposeObjects` shows the objects.
///
/// Owned by the host, and destroyed before the document that it shows. A change outside a transaction is a step of its
/// own. Errors are raised in the script.
class Document {
public:
    using Object = nxSupport::Object;

    Document(nxSupport::Document& document, nxSupport::ObjectCatalog& catalog, nxSupport::Domain& domain,
             NetworkOptions const& options);
    Document(Document const&) = delete;
    Document& operator=(Document const&) = delete;

    // Named values: those of the root.
    [[nodiscard]] nxSupport::ScriptValue get(urString::CString const& name) const {
        return {document_.root().value(name)};
    }
    /// Null removes the value. Raises in a context that does not allow changes.
    void set(urString::CString const& name, nxSupport::ScriptValue const& value);
    /// The names that have a value.
    [[nodiscard]] ur::vector<urString::CString> names() const;
    /// Calls `function` with the name and the value after each change, including undo and redo.
    void listen(urString::CString const& name, ur::Reference<nxRFL::Function> const& function);
    /// Calls `function` with each value to be set; its result is set instead. If it fails or returns no value, nothing
    /// is set and the change raises its error.
    void validate(urString::CString const& name, ur::Reference<nxRFL::Function> const& function);

    /// Calls `function`; its changes are one step, or are undone if it fails.
    void edit(urString::CString const& name, ur::Reference<nxRFL::Function> const& function);
    bool undo();
    bool redo();
    bool undoTo(std::size_t count);

    void select(Objects const& objects);
    [[nodiscard]] ur::Reference<Panel> panel(Objects const& objects);

    // Refused in the sandbox.
    void save(urString::CString const& path);
    void open(urString::CString const& path);
    void autosave(urString::CString const& folder, urString::CString const& name);
    void discardAutosave();
    [[nodiscard]] ur::vector<RecoverableFile> recoverable(urString::CString const& folder) const;
    void recover(urString::CString const& path);

    // For the functions of objects.
    /// Runs `change` as a step of that name, or as a part of the one that is open.
    template <class Change>
    void change(urString::CString const& name, Change&& change) {
        requireChanges();
        nxTXN::Transaction transaction(document_.history(), name);
        std::forward<Change>(change)();
        transaction.commit();
        charges_.settle();
    }
    /// Raises where nothing can be changed, and for an object whose making was undone.
    void requireChangeable(Object const& object) const;
    /// Null removes the value. The step is called "Set NAME".
    void setValue(Object& object, urString::CString const& name, KeptValues::ItemReference item);
    /// The same in all objects as one step, or raises why one of them refuses the value.
    void setValue(std::span<Object* const> objects, urString::CString const& name, KeptValues::ItemReference item,
                  urString::CString const& step);
    [[nodiscard]] nxSupport::Document& document() const noexcept { return document_; }
    [[nodiscard]] DescribedClasses& classes() noexcept { return classes_; }
    [[nodiscard]] DocumentCharges& charges() noexcept { return charges_; }

    /// Charges what is made from now on, as long as the document or its history holds it.
    void chargeTo(std::shared_ptr<ur::Account> const& account);

private:
    /// Those of one name. Callbacks may add more.
    struct Name {
        ur::vector<nxRFL::Callback> listeners;
        ur::vector<ur::Reference<nxRFL::Function>> validators;
    };

    Name& named(urString::CString const& name);
    void requireChanges() const;
    void requireFiles(urString::CString const& path) const;
    template <class Open>
    void replace(urString::CString const& path, Open open);
    void setFitting(Object& object, urString::CString const& name, KeptValues::ItemReference item);
    [[nodiscard]] KeptValues::ItemReference validated(urString::CString const& name, KeptValues::ItemReference item);
    void notify(urString::CString const& name);

    nxSupport::Document& document_;
    nxSupport::Domain& domain_;
    NetworkOptions const& options_;
    std::map<urString::CString, Name> names_;
    DescribedClasses classes_;
    DocumentCharges charges_;
    urRTB::ScopedConnection changes_;
};

/// Registers the classes of the document and its objects.
void exposeDocument(nxRFL::Database& database, Document& document);

}  // namespace nxhost
