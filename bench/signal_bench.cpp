// Signals: emitting to listeners, connecting and disconnecting.
#include <sigc++/sigc++.h>

#include <boost/signals2.hpp>
#include <memory>
#include <vector>

#include "bench/QtEmitter.h"
#include "bench/rows.h"
#include "foundation/urRTB/Signal.h"

namespace bench {
namespace {

int received = 0;
void listen(int value) { received += value; }

/// A side that emits `emissions` times to `listeners` listeners connected by `connect`.
template <class Sender, class Connect, class Emit>
Side emitting(char const* name, int listeners, Connect connect, Emit emit) {
    auto const sender = std::make_shared<Sender>();
    for (int i = 0; i < listeners; ++i) connect(*sender);
    int const emissions = 200000 / (listeners + 3);
    return {name, [=] {
                return seconds([&] {
                    for (int i = 0; i < emissions; ++i) emit(*sender, i);
                    keep(received);
                });
            }};
}

Sides emitters(int listeners) {
    return {emitting<urRTB::Signal<int>>(
                "urRTB", listeners, [](auto& signal) { signal.addCallback(&listen); },
                [](auto& signal, int value) { signal.emit(value); }),
            emitting<sigc::signal<void, int>>(
                "sigc++", listeners, [](auto& signal) { signal.connect(sigc::ptr_fun(&listen)); },
                [](auto& signal, int value) { signal.emit(value); }),
            emitting<boost::signals2::signal<void(int)>>(
                "boost.signals2", listeners, [](auto& signal) { signal.connect(&listen); },
                [](auto& signal, int value) { signal(value); }),
            emitting<QtEmitter>(
                "Qt", listeners, [](auto& sender) { QObject::connect(&sender, &QtEmitter::sent, &listen); },
                [](auto& sender, int value) { sender.send(value); })};
}

/// A side that connects 100 listeners and disconnects them in the same order.
template <class Connection, class Sender, class Connect, class Disconnect>
Side churning(char const* name, Connect connect, Disconnect disconnect) {
    return {name, [=] {
                auto const sender = std::make_unique<Sender>();
                std::vector<Connection> connections(100);
                return seconds([&] {
                    for (int round = 0; round < 200; ++round) {
                        for (auto& connection : connections) connection = connect(*sender);
                        for (auto& connection : connections) disconnect(connection);
                    }
                });
            }};
}

Sides churners() {
    return {churning<urRTB::Connection, urRTB::Signal<int>>(
                "urRTB", [](auto& signal) { return signal.addCallback(&listen); },
                [](auto& connection) { connection.disconnect(); }),
            churning<sigc::connection, sigc::signal<void, int>>(
                "sigc++", [](auto& signal) { return sigc::connection(signal.connect(sigc::ptr_fun(&listen))); },
                [](auto& connection) { connection.disconnect(); }),
            churning<boost::signals2::connection, boost::signals2::signal<void(int)>>(
                "boost.signals2", [](auto& signal) { return signal.connect(&listen); },
                [](auto& connection) { connection.disconnect(); }),
            churning<QMetaObject::Connection, QtEmitter>(
                "Qt", [](auto& sender) { return QObject::connect(&sender, &QtEmitter::sent, &listen); },
                [](auto& connection) { QObject::disconnect(connection); })};
}

/// Connects `count` listeners, emits to them, and disconnects them in the same order.
double lifeOfListeners(std::size_t count) {
    urRTB::Signal<int> signal;
    std::vector<urRTB::Connection> connections(count);
    return seconds([&] {
        for (auto& connection : connections) connection = signal.addCallback(&listen);
        signal.emit(1);
        for (auto& connection : connections) connection.disconnect();
    });
}

}  // namespace

void addSignalRows(Suite& suite) {
    for (int const listeners : {1, 8, 100}) {
        suite.compare("signal-emit/" + std::to_string(listeners), 1.0, [=] { return emitters(listeners); });
    }
    suite.compare("signal-connect-disconnect", 0.5, [] { return churners(); });
    suite.compareGrowth("listeners", 100, lifeOfListeners);
}

}  // namespace bench
