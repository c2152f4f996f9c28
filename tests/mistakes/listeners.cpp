#include "foundation/ur/Reference.h"
#include "foundation/urRTB/Signal.h"
#include "foundation/urThread/RunQueue.h"
#include "support/messaging/Broadcaster.h"
#include "support/properties/Prop.h"

struct Saved {};
extern nxSupport::Broadcaster& broadcaster;
extern nxSupport::Property& size;
extern nxSupport::Prop<double>& width;

// says: no ref() and unref() to count holders with: derive the class from ur::ReferenceCount
auto const saved = ur::make<Saved>();

// says: a callback of this signal can be called with its arguments
void listen(urRTB::Signal<int>& changed) {
    changed.addCallback([](char const* text) { return text; });
}

// says: what a run queue runs is called without arguments
void later(urThread::RunQueue& queue) {
    queue.add([](int count) { return count; });
}

// says: messages derive from nxSupport::Broadcaster::Message
void tell(Saved& saved) { broadcaster.broadcast(saved); }

// says: messages are not constant: take a T& and broadcast one
void tell(Saved const& saved) { broadcaster.broadcast(saved); }

// says: messages derive from nxSupport::Broadcaster::Message
auto const handle = broadcaster.subscribe<Saved>({}, [](Saved&) {});

// says: a listener of a property is called with (ur::Reference<Property const>, PropertyModType)
auto const handle = size.subscribe([](double value) { return value; });

// says: a validator of a property is called with (ur::Reference<Property const>, ItemReference&)
auto const handle = size.subscribeValidation([](double value) { return value > 0; });

// says: a listener of an nxSupport::Prop<T> is called with (T const&, PropertyModType)
auto const handle = width.subscribe([](double value) { return value; });

// says: no item shape of this type: include plst/convert.h or plst/containers.h
Saved read(nxSupport::Prop<Saved> const& property) { return property.get(); }
