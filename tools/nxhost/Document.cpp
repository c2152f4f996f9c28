// Named values, steps, files, and the class that scripts use.
#include "tools/nxhost/Document.h"

#include <array>
#include <chrono>

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/urOS/File.h"
#include "support/documents/Autosave.h"
#include "support/documents/documentFiles.h"
#include "support/documents/recovery.h"
#include "support/services/DebugPrint.h"
#include "support/services/PerfScope.h"
#include "support/services/Timeline.h"
#include "tools/nxhost/ObjectListener.h"
#include "tools/nxhost/objects.h"
#include "tools/nxhost/requireFunction.h"
#include "tools/nxhost/throwIfFailed.h"

namespace nxhost {

using nxRFL::Function;
using ur::Reference;
using urString::CString;
using ItemReference = KeptValues::ItemReference;

namespace {

/// Returns the validator's result for the value. A failure of the validator is raised.
nxSupport::ScriptValue corrected(Function const& validator, CString const& name, ItemReference const& item) {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    write(writer, nxSupport::ScriptValue{item});
    nxSupport::ScriptCallScope const scope("validator");
    validator.call(arguments, results);
    auto const refuse = [&name](CString const& why) {
        throw nxRFL::Exception(CString::format("the validator of \"%s\" %s", name.c_str(), why.c_str()));
    };
    if (results.empty()) refuse("returns nothing");
    nxSupport::ScriptValue result;
    try {
        nxRFL::Reader reader = nxRFL::Reader::ofResults(results, validator);
        read(reader, result);
    } catch (nxRFL::Exception const& error) {
        refuse(CString("returns no value: ").append(error.message()));
    }
    return result;
}

/// An empty table becomes an array or a dictionary, as the default of the property is.
ItemReference fitted(ItemReference const& item, nxSupport::PropertyDescription const& description) {
    auto const isEmpty = [](ItemReference const& table) {
        auto const array = nxPLST::asArray(table);
        auto const dictionary = nxPLST::asDictionary(table);
        return array ? array->empty() : dictionary && dictionary->empty();
    };
    ItemReference const initial = description.value.item();
    if (!initial || !item || item->type() == initial->type() || !isEmpty(item)) return item;
    if (initial->type() == nxPLST::ArrayType) return ur::make<nxPLST::Array>();
    if (initial->type() == nxPLST::DictionaryType) return ur::make<nxPLST::Dictionary>();
    return item;
}

/// Raises for a value that the description excludes.
void requireFitting(nxSupport::ObjectClass const& objectClass, nxSupport::PropertyDescription const& description,
                    ItemReference const& item) {
    CString const fault = description.readOnly ? "is read-only" : item ? description.faultOf(item) : CString();
    if (!fault.empty()) {
        throw nxRFL::Exception(
            CString(objectClass.name()).append(".").append(description.name).append(" ").append(fault));
    }
}

}  // namespace

Document::Document(nxSupport::Document& document, nxSupport::ObjectCatalog& catalog, nxSupport::Domain& domain,
                   NetworkOptions const& options)
    : document_(document),
      domain_(domain),
      options_(options),
      classes_(catalog),
      charges_(document),
      changes_(document.changedSignal().addCallback([this](Object& object, CString const& name) {
          if (&object == &document_.root()) notify(name);
      })) {}

// ---- Named values

void Document::set(CString const& name, nxSupport::ScriptValue const& value) {
    requireChanges();
    named(name);
    setValue(document_.root(), name, value.item);
}

ur::vector<CString> Document::names() const {
    ur::vector<CString> result;
    if (auto const values = document_.root().values()) {
        for (auto const& [name, value] : values->dictionary()) result.push_back(name);
    }
    return result;
}

void Document::listen(CString const& name, Reference<Function> const& function) {
    requireFunction(function != nullptr, "nxhost::Document.listen", "2 (callback)");
    Name& listened = named(name);
    charges_.addCallable(name);
    listened.listeners.emplace_back(function);
}

void Document::validate(CString const& name, Reference<Function> const& function) {
    requireFunction(function != nullptr, "nxhost::Document.validate", "2 (validator)");
    Name& validated = named(name);
    charges_.addCallable(name);
    validated.validators.push_back(function);
}

Document::Name& Document::named(CString const& name) {
    auto const known = names_.find(name);
    if (known != names_.end()) return known->second;
    if (name.size() > longestName) throw nxRFL::Exception("the name of a value has at most 256 bytes");
    charges_.addName();
    return names_[name];
}

ItemReference Document::validated(CString const& name, ItemReference item) {
    auto const known = names_.find(name);
    if (known == names_.end()) return item;
    auto const& validators = known->second.validators;
    for (std::size_t i = 0; i < validators.size(); ++i) {
        nxSupport::ScriptValue const accepted = corrected(*Reference<Function>(validators[i]), name, item);
        charges_.addValue(accepted.item, name);
        item = accepted.item;
    }
    return item;
}

void Document::notify(CString const& name) {
    auto const known = names_.find(name);
    if (known == names_.end()) return;
    auto const& listeners = known->second.listeners;
    for (std::size_t i = 0, count = listeners.size(); i < count; ++i) {
        nxRFL::Callback const listener = listeners[i];
        nxRFL::Stack arguments;
        nxRFL::Stack results;
        nxRFL::Writer writer(arguments);
        writer.writeText(name);
        write(writer, get(name));
        nxSupport::ScriptCallScope const scope("listener");
        listener.call(arguments, results);
    }
}

void Document::setValue(Object& object, CString const& name, ItemReference item) {
    setValue(std::array{&object}, name, std::move(item), CString("Set ").append(name));
}

void Document::setValue(std::span<Object* const> objects, CString const& name, ItemReference item,
                        CString const& step) {
    for (Object const* const object : objects) requireChangeable(*object);
    if (name.size() > longestName) throw nxRFL::Exception("the name of a value has at most 256 bytes");
    if (name.empty()) throw nxRFL::Exception("the name of a value is empty");
    charges_.addValue(item, name, objects.size());
    Objects const held(objects.begin(), objects.end());  // a listener may let go of them
    change(step, [&] {
        for (auto const& object : held) setFitting(*object, name, item);
    });
}

void Document::setFitting(Object& object, CString const& name, ItemReference item) {
    if (&object == &document_.root()) item = validated(name, std::move(item));
    nxSupport::ObjectClass const& objectClass = object.objectClass();
    if (auto const* const description = objectClass.find(name)) {
        item = fitted(item, *description);
        requireFitting(objectClass, *description, item);
    }
    object.setValue(name, item);
}

void Document::requireChanges() const {
    if (classes_.isUpgrading()) throw nxRFL::Exception("nothing can be changed while values are brought up");
    if (domain_.isConst()) throw nxRFL::Exception("nothing can be changed in a Const context");
}

void Document::requireChangeable(Object const& object) const {
    requireChanges();
    if (!object.isTxnExtant()) throw nxRFL::Exception("the object is gone, because its making was undone");
}

// ---- Steps

void Document::edit(CString const& name, Reference<Function> const& function) {
    requireFunction(function != nullptr, "nxhost::Document.edit", "2 (body)");
    nxSupport::PerfScope time;
    time.charge(nxSupport::Perf_UpdateDoc);
    if (name.size() > longestName) throw nxRFL::Exception("the name of a step has at most 256 bytes");
    nxSupport::ScriptCallScope const call(name);
    nxTXN::Transaction transaction(document_.history(), name);
    nxRFL::Stack results;
    function->call({}, results);
    transaction.commit();
    charges_.settle();
}

bool Document::undo() {
    nxSupport::DebugPrint print("nxhost::Document::undo", nxSupport::Debug_Undo);
    print("Undoing \"%s\".", document_.history().undoName().c_str());
    bool const isDone = document_.undo();
    charges_.settle();
    return isDone;
}

bool Document::redo() {
    nxSupport::DebugPrint print("nxhost::Document::redo", nxSupport::Debug_Undo);
    print("Redoing \"%s\".", document_.history().redoName().c_str());
    bool const isDone = document_.redo();
    charges_.settle();
    return isDone;
}

bool Document::undoTo(std::size_t count) {
    bool const isDone = document_.undoTo(count);
    charges_.settle();
    return isDone;
}

// ---- What a user has selected

void Document::select(Objects const& objects) {
    charges_.setSelected(objects.size());
    document_.select(pointersTo(objects));
}

Reference<Panel> Document::panel(Objects const& objects) { return ur::make<Panel>(*this, objects); }

// ---- Files

void Document::requireFiles(CString const& path) const {
    if (options_.sandboxed) throw nxRFL::Exception("files are not for the sandbox");
    if (path.find('\0') != CString::npos) throw nxRFL::Exception("the name of a file has no NULs");
}

void Document::save(CString const& path) {
    requireFiles(path);
    throwIfFailed(nxSupport::save(document_, path));
}

/// Charges the account for what `open` reads.
template <class Open>
void Document::replace(CString const& path, Open open) {
    requireFiles(path);
    requireChanges();
    std::uint64_t bytes = 0;
    urOS::File file;
    throwIfFailed(file.open(path, urOS::openRead));
    throwIfFailed(file.size(bytes));
    ur::Charge const room = charges_.room(bytes);
    throwIfFailed(open());
    charges_.addOpened();
}

void Document::open(CString const& path) {
    replace(path, [&] { return nxSupport::open(document_, path); });
}

void Document::recover(CString const& path) {
    replace(path, [&] { return nxSupport::recover(document_, path); });
}

void Document::autosave(CString const& folder, CString const& name) {
    requireFiles(folder);
    throwIfFailed(nxSupport::autosave(document_, folder, name));
}

void Document::discardAutosave() {
    requireFiles({});
    throwIfFailed(nxSupport::discardAutosave(document_));
}

ur::vector<RecoverableFile> Document::recoverable(CString const& folder) const {
    requireFiles(folder);
    ur::vector<RecoverableFile> files;
    for (auto const& file : nxSupport::recoverable(folder)) {
        std::chrono::duration<double> const time = file.time.time_since_epoch();
        files.push_back({file.path.asUTF8(), file.name, time.count()});
    }
    return files;
}

void Document::chargeTo(std::shared_ptr<ur::Account> const& account) {
    classes_.chargeTo(account);
    charges_.chargeTo(account);
}

void exposeDocument(nxRFL::Database& database, Document& document) {
    exposeObjects(database, document);
    exposePanels(database);
    using Path = std::string_view;
    nxRFL::ExposeClass<Document>(database, "nxhost::Document")
        .addProperty("root", [](Document& self) { return &self.document().root(); })
        .addMethod("find", [](Document& self, Path path) { return self.document().find(path); }, {"path"})
        .addMethod("findId",
                   [](Document& self, Path text) {
                       urOS::Uuid id;
                       return id.parse(text) ? self.document().find(id) : nullptr;
                   },
                   {"id"})
        .addMethod("describe", [](Document& self, ClassTable const& table) { self.classes().add(table); }, {"class"})
        .addMethod("get", &Document::get, {"name"})
        .addMethod("set", &Document::set, {"name", "value"})
        .addMethod("names", &Document::names)
        .addMethod("edit", &Document::edit, {"name", "body"})
        .addMethod("undo", &Document::undo)
        .addMethod("redo", &Document::redo)
        .addMethod("undoTo", &Document::undoTo, {"steps"})
        .addMethod("listen", &Document::listen, {"name", "callback"})
        .addMethod("validate", &Document::validate, {"name", "validator"})
        .addMethod("watch",
                   [](Document& self, Reference<Function> const& function) {
                       requireFunction(function != nullptr, "nxhost::Document.watch", "1 (callback)");
                       ObjectListener::connect(self.document(), function, self.charges().callable());
                   },
                   {"callback"})
        .addProperty("selection",
                     [](Document& self) {
                         auto const selected = self.document().selection();
                         return Objects(selected.begin(), selected.end());
                     })
        .addMethod("select", &Document::select, {"objects"})
        .addMethod("panel", &Document::panel, {"objects"})
        .addMethod("copy", &copy, {"objects"})
        .addMethod("duplicate", &duplicate, {"objects"})
        .addMethod("save", &Document::save, {"path"})
        .addMethod("open", &Document::open, {"path"})
        .addMethod("autosave", &Document::autosave, {"folder", {"name", ""}})
        .addMethod("discardAutosave", &Document::discardAutosave)
        .addMethod("recoverable", &Document::recoverable, {"folder"})
        .addMethod("recover", &Document::recover, {"path"})
        .addProperty("isModified", [](Document& self) { return self.document().isModified(); })
        .addProperty("steps", [](Document& self) { return self.document().steps(); })
        .addProperty("undoName", [](Document& self) { return self.document().history().undoName(); })
        .addProperty("redoName", [](Document& self) { return self.document().history().redoName(); })
        .addProperty("undoCount", [](Document& self) { return self.document().history().undoCount(); })
        .addProperty("redoCount", [](Document& self) { return self.document().history().redoCount(); })
        .addProperty("historyBytes", [](Document& self) { return self.document().history().historyBytes(); });
}

}  // namespace nxhost
