// Properties and their history, and the class that scripts use.
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

constexpr std::size_t longestName = 256;
constexpr std::size_t bytesOfEntry = 2048;    // a name with its property
constexpr std::size_t bytesOfCallable = 512;  // a listener or a validator
constexpr std::size_t bytesOfStep = 256;      // memory that the history does not count, such as the names of steps

void notify(nxRFL::Callback const& listener, CString const& name, ScriptValue const& value) {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    writer.writeText(name);
    write(writer, value);
    nxSupport::ScriptCallScope const scope("listener");
    listener.call(arguments, results);
}

/// Returns the validator's result for the value. A failure of the validator is raised.
ScriptValue corrected(Function const& validator, CString const& name, ScriptValue const& value) {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    write(writer, value);
    nxSupport::ScriptCallScope const scope("validator");
    validator.call(arguments, results);
    auto const refuse = [&name](CString const& why) {
        throw nxRFL::Exception(CString::format("the validator of \"%s\" %s", name.c_str(), why.c_str()));
    };
    if (results.empty()) refuse("returns nothing");
    ScriptValue result;
    try {
        nxRFL::Reader reader = nxRFL::Reader::ofResults(results, validator);
        read(reader, result);
    } catch (nxRFL::Exception const& error) {
        refuse(CString("returns no value: ").append(error.message()));
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
    kept_.add(value.item);
    nxTXN::Transaction transaction(history_, CString("Set ").append(name));
    property->setValue(value.item);
    transaction.commit();
    settleHistory();
}

ur::vector<CString> Document::names() const {
    ur::vector<CString> result;
    for (auto const& [name, entry] : entries_) {
        if (entry.property->value()) result.push_back(name);
    }
    return result;
}

void Document::edit(CString const& name, Reference<Function> const& function) {
    requireFunction(function != nullptr, "nxhost::Document.edit", "2 (body)");
    nxSupport::PerfScope time;
    time.charge(nxSupport::Perf_UpdateDoc);
    if (name.size() > longestName) throw nxRFL::Exception("the name of a step has at most 256 bytes");
    nxSupport::ScriptCallScope const call(name);
    nxTXN::Transaction transaction(history_, name);
    nxRFL::Stack results;
    function->call({}, results);
    transaction.commit();
    settleHistory();
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
    requireFunction(function != nullptr, "nxhost::Document.listen", "2 (callback)");
    Entry& listened = entry(name);
    chargeCallable(name);
    if (!listened.view) {
        nxTXN::Transaction quiet(history_, {}, nxTXN::TransactionKind::none);
        listened.view = listened.property->cloneUnTxd();
        quiet.commit();
    }
    listened.connections.push_back(
        listened.view->subscribe([name, callback = nxRFL::Callback(function)](Reference<Property const> const& property,
                                                                              nxSupport::PropertyModType stage) {
            if (stage == nxSupport::ModifyEnd) notify(callback, name, {property->value()});
        }));
}

void Document::validate(CString const& name, Reference<Function> const& function) {
    requireFunction(function != nullptr, "nxhost::Document.validate", "2 (validator)");
    Entry& validated = entry(name);
    chargeCallable(name);
    validated.connections.push_back(validated.property->subscribeValidation(
        [this, name, function](Reference<Property const> const&, Property::ItemReference& candidate) {
            ScriptValue const accepted = corrected(*function, name, {candidate});
            kept_.add(accepted.item);
            candidate = accepted.item;
        }));
}

/// A new name's property is created outside the history, so that undo restores values and does not remove properties.
Document::Entry& Document::entry(CString const& name) {
    auto const known = entries_.find(name);
    if (known != entries_.end() && known->second.property) return known->second;
    if (name.size() > longestName) throw nxRFL::Exception("the name of a value has at most 256 bytes");
    entriesCharge_.add(bytesOfEntry);
    Entry& result = entries_[name];
    nxTXN::Transaction quiet(history_, {}, nxTXN::TransactionKind::none);
    result.property = Property::createTxd(history_, name);
    quiet.commit();
    return result;
}

void Document::chargeTo(std::shared_ptr<ur::Account> const& account) {
    if (entriesCharge_) return;
    kept_.chargeTo(account);
    entriesCharge_ = ur::Charge(account, 0);
    historyCharge_ = ur::Charge(account, 0);
}

void Document::chargeCallable(CString const& name) { entriesCharge_.add(bytesOfCallable + name.size()); }

/// Charges the history's records. They exist already, so the charge cannot be refused.
void Document::settleHistory() noexcept {
    auto const steps = static_cast<std::size_t>(history_.undoCount() + history_.redoCount());
    historyCharge_.set(history_.historyBytes() + steps * bytesOfStep);
}

void exposeDocument(nxRFL::Database& database) {
    nxRFL::ExposeClass<Document>(database, "nxhost::Document")
        .addMethod("get", &Document::get, {"name"})
        .addMethod("set", &Document::set, {"name", "value"})
        .addMethod("names", &Document::names)
        .addMethod("edit", &Document::edit, {"name", "body"})
        .addMethod("undo", &Document::undo)
        .addMethod("redo", &Document::redo)
        .addMethod("listen", &Document::listen, {"name", "callback"})
        .addMethod("validate", &Document::validate, {"name", "validator"})
        .addProperty("undoName", [](Document& self) { return self.history().undoName(); })
        .addProperty("redoName", [](Document& self) { return self.history().redoName(); })
        .addProperty("undoCount", [](Document& self) { return self.history().undoCount(); })
        .addProperty("redoCount", [](Document& self) { return self.history().redoCount(); })
        .addProperty("historyBytes", [](Document& self) { return self.history().historyBytes(); });
}

}  // namespace nxhost
