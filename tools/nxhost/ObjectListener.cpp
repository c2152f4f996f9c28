// Calls a script's function with what a signal says.
#include "tools/nxhost/ObjectListener.h"

#include "foundation/nxRFL/Reader.h"
#include "foundation/nxRFL/values.h"
#include "script/ScriptValue.h"
#include "support/services/Timeline.h"

namespace nxhost {

using urString::CString;

template <class Source>
void ObjectListener::follow(Source& source, ur::Reference<ObjectListener> const& listener) {
    source.changedSignal().addCallback(
        [listener](Object& object, CString const& name) { listener->changed(object, name); });
    source.insertedSignal().addCallback([listener](Object& parent, std::size_t index, Object& child) {
        listener->child("inserted", parent, index, child);
    });
    source.removedSignal().addCallback([listener](Object& parent, std::size_t index, Object& child) {
        listener->child("removed", parent, index, child);
    });
    source.movedSignal().addCallback([listener](Object& parent, std::size_t from, std::size_t to, Object& child) {
        listener->moved(parent, from, to, child);
    });
}

void ObjectListener::connect(Object& object, ur::Reference<nxRFL::Function> const& function, ur::Charge charge) {
    follow(object, ur::make<ObjectListener>(function, std::move(charge)));
}

void ObjectListener::connect(nxSupport::Document& document, ur::Reference<nxRFL::Function> const& function,
                             ur::Charge charge) {
    auto const listener = ur::make<ObjectListener>(function, std::move(charge));
    follow(document, listener);
    document.replacedSignal().addCallback([listener] { listener->event("opened"); });
    document.selectionSignal().addCallback([listener] { listener->event("selected"); });
}

void ObjectListener::changed(Object& object, CString const& name) {
    if (!callback_.function()) return;
    nxRFL::Stack arguments;
    nxRFL::Writer writer(arguments);
    writer.writeText("changed");
    nxRFL::write(writer, &object);
    writer.writeText(name);
    write(writer, nxSupport::ScriptValue{object.value(name)});
    call(arguments);
}

void ObjectListener::child(char const* event, Object& parent, std::size_t index, Object& child) {
    nxRFL::Stack arguments;
    nxRFL::Writer writer(arguments);
    writer.writeText(event);
    nxRFL::write(writer, &parent);
    writer.writeDouble(static_cast<double>(index) + 1);
    nxRFL::write(writer, &child);
    call(arguments);
}

void ObjectListener::moved(Object& parent, std::size_t from, std::size_t to, Object& child) {
    nxRFL::Stack arguments;
    nxRFL::Writer writer(arguments);
    writer.writeText("moved");
    nxRFL::write(writer, &parent);
    writer.writeDouble(static_cast<double>(from) + 1);
    writer.writeDouble(static_cast<double>(to) + 1);
    nxRFL::write(writer, &child);
    call(arguments);
}

void ObjectListener::event(char const* name) {
    nxRFL::Stack arguments;
    nxRFL::Writer(arguments).writeText(name);
    call(arguments);
}

void ObjectListener::call(nxRFL::Stack const& arguments) {
    nxRFL::Callback const callback = callback_;  // it may end itself
    nxRFL::Stack results;
    nxSupport::ScriptCallScope const scope("listener");
    if (!callback.call(arguments, results)) return;
    nxRFL::Reader reader(results);
    if (reader.kind() != nxRFL::Kind::boolean || reader.readBool()) return;
    callback_ = nxRFL::Callback(nullptr);
    charge_.set(0);
}

}  // namespace nxhost
