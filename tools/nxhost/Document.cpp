// Properties and their history, and what scripts see of them.
#include "tools/nxhost/Document.h"

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxTXN/Transaction.h"
#include "support/services/DebugPrint.h"
#include "support/services/PerfScope.h"
#include "support/services/Timeline.h"
#include "tools/nxhost/requireFunction.h"

namespace nxhost {

using nxRFL::Function;
using nxSupport::Property;
using ur::Reference;
using urString::CString;

namespace {

/// Whether it succeeded; `result` is then what it returned.
bool call(nxRFL::Callback const& callback, CString const* name, ScriptValue const& value, ScriptValue* result) {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    if (name) writer.writeText(*name);
    write(writer, value);
    nxSupport::ScriptCallScope const scope(name ? "listener" : "validator");
    if (!callback.call(arguments, results)) return false;
    if (!result) return true;
    try {
        nxRFL::Reader reader(results);
        read(reader, *result);
    } catch (nxRFL::Exception const& error) {
        callback.callHandler(error);
        return false;
    }
    return true;
}

}  // namespace

ScriptValue Document::get(CString const& name) const {
    auto const found = entries_.find(name);
    return {found == entries_.end() ? nullptr : found->second.property->value()};
}

void Document::set(CString const& name, ScriptValue const& value) {
    if (domain_.isConst()) throw nxRFL::Exception("nothing can be changed in a Const context");
    Reference<Property> const property = entry(name).property;
    nxTXN::Transaction transaction(history_, CString("Set ").append(name));
    property->setValue(value.item);
    transaction.commit();
}

ur::vector<CString> Document::names() const {
    ur::vector<CString> result;
    for (auto const& [name, entry] : entries_) {
        if (entry.property->value()) result.push_back(name);
    }
    return result;
}

void Document::edit(CString const& name, Reference<Function> const& function) {
    requireFunction(function != nullptr, "nxhost::Document.edit", 2);
    nxSupport::PerfScope time;
    time.charge(nxSupport::Perf_UpdateDoc);
    nxSupport::ScriptCallScope const call(name);
    nxTXN::Transaction transaction(history_, name);
    nxRFL::Stack results;
    function->call({}, results);
    transaction.commit();
}

bool Document::undo() {
    nxSupport::DebugPrint print("nxhost::Document::undo", nxSupport::Debug_Undo);
    print("Undoing \"%s\".", history_.undoName().c_str());
    return history_.undo();
}

bool Document::redo() {
    nxSupport::DebugPrint print("nxhost::Document::redo", nxSupport::Debug_Undo);
    print("Redoing \"%s\".", history_.redoName().c_str());
    return history_.redo();
}

void Document::listen(CString const& name, Reference<Function> const& function) {
    requireFunction(function != nullptr, "nxhost::Document.listen", 2);
    Entry& listened = entry(name);
    if (!listened.view) {
        nxTXN::Transaction quiet(history_, {}, nxTXN::TransactionKind::none);
        listened.view = listened.property->cloneUnTxd();
        quiet.commit();
    }
    listened.connections.push_back(
        listened.view->subscribe([name, callback = nxRFL::Callback(function)](Reference<Property const> const& property,
                                                                              nxSupport::PropertyModType stage) {
            if (stage == nxSupport::ModifyEnd) call(callback, &name, {property->value()}, nullptr);
        }));
}

void Document::validate(CString const& name, Reference<Function> const& function) {
    requireFunction(function != nullptr, "nxhost::Document.validate", 2);
    Entry& validated = entry(name);
    validated.connections.push_back(validated.property->subscribeValidation(
        [callback = nxRFL::Callback(function)](Reference<Property const> const&, Property::ItemReference& candidate) {
            ScriptValue corrected;
            if (call(callback, nullptr, {candidate}, &corrected)) candidate = corrected.item;
        }));
}

/// That of a name seen for the first time is made outside the history: undo takes values back, not properties.
Document::Entry& Document::entry(CString const& name) {
    Entry& result = entries_[name];
    if (result.property) return result;
    nxTXN::Transaction quiet(history_, {}, nxTXN::TransactionKind::none);
    result.property = Property::createTxd(history_, name);
    quiet.commit();
    return result;
}

void exposeDocument(nxRFL::Database& database) {
    nxRFL::ExposeClass<Document>(database, "nxhost::Document")
        .addMethod("get", &Document::get)
        .addMethod("set", &Document::set)
        .addMethod("names", &Document::names)
        .addMethod("edit", &Document::edit)
        .addMethod("undo", &Document::undo)
        .addMethod("redo", &Document::redo)
        .addMethod("listen", &Document::listen)
        .addMethod("validate", &Document::validate)
        .addProperty("undoName", [](Document& self) { return self.history().undoName(); })
        .addProperty("redoName", [](Document& self) { return self.history().redoName(); })
        .addProperty("undoCount", [](Document& self) { return self.history().undoCount(); })
        .addProperty("redoCount", [](Document& self) { return self.history().redoCount(); })
        .addProperty("historyBytes", [](Document& self) { return self.history().historyBytes(); });
}

}  // namespace nxhost
