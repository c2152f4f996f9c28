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

void tell(nxRFL::Callback const& listener, CString const& name, ScriptValue const& value) {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    writer.writeText(name);
    write(writer, value);
    nxSupport::ScriptCallScope const scope("listener");
    listener.call(arguments, results);
}

/// What the validator makes of the value. What it fails with fails the change.
ScriptValue corrected(Function const& validator, CString const& name, ScriptValue const& value) {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    write(writer, value);
    nxSupport::ScriptCallScope const scope("validator");
    validator.call(arguments, results);
    auto const refuse = [&name](char const* why) {
        throw nxRFL::Exception(CString::format("the validator of \"%s\" %s", name.c_str(), why));
    };
    if (results.empty()) refuse("returns nothing");
    ScriptValue result;
    try {
        nxRFL::Reader reader(results);
        read(reader, result);
    } catch (nxRFL::Exception const& error) {
        refuse(CString("returns no value: ").append(error.message()).c_str());
    }
    return result;
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
            if (stage == nxSupport::ModifyEnd) tell(callback, name, {property->value()});
        }));
}

void Document::validate(CString const& name, Reference<Function> const& function) {
    requireFunction(function != nullptr, "nxhost::Document.validate", 2);
    Entry& validated = entry(name);
    validated.connections.push_back(validated.property->subscribeValidation(
        [name, function](Reference<Property const> const&, Property::ItemReference& candidate) {
            candidate = corrected(*function, name, {candidate}).item;
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
