// Tests forms of callbacks, ownership, and destruction during emissions.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>

#include "foundation/urRTB/Signal.h"

namespace {

using urRTB::Connection;
using urRTB::ScopedConnection;
using urRTB::Signal;
using urRTB::SignalClient;

std::string log;
void note(int number) { log += std::to_string(number); }
void notePair(std::string text, int number) { log += std::move(text) + std::to_string(number); }

struct Tripler {
    void note(int number) { ::note(3 * number); }
};
struct Doubler final : urRTB::FunctionArg<int> {
    explicit Doubler(std::shared_ptr<int> held = nullptr) : held_(std::move(held)) {}
    void call(int number) override { note(2 * number); }
    std::shared_ptr<int> held_;  // as long as a handle names the connection
};
static_assert(sizeof(Signal<int>) == sizeof(void*));

class SignalTest : public testing::Test {
protected:
    SignalTest() { log.clear(); }
    [[nodiscard]] long held() const { return token.use_count() - 1; }

    std::shared_ptr<int> const token = std::make_shared<int>();  // captured to see how long captures live
};

TEST_F(SignalTest, TakesEveryFormOfCallbackAndDescribesEach) {
    Signal<int> one;
    SignalClient client;
    Tripler tripler;
    void (*const nothing)(int) = nullptr;
    EXPECT_FALSE(one.addCallback(nothing).connected());
    one.addCallback(note);
    one.addCallback(new urRTB::FunctionArgGlobal<int>(note)).block();
    one.addCallback(new Doubler);
    one.addCallback(client, &tripler, &Tripler::note);
    one.addCallback([four = std::make_unique<int>(4)](int number) { return log += std::to_string(*four * number); });
    one.emit(1);
    Signal<std::string, int> two;
    two.addCallback(new urRTB::Function2ArgsGlobal<std::string, int>(notePair));
    two.emit(":", 5);
    Signal<std::string&> changing;
    changing.addCallback([](std::string& text) { text += "!"; });
    changing.emit(log);
    EXPECT_EQ(log, "1234:5!");

    one.connections()[0].disconnect();
    auto const connections = one.connections();
    ASSERT_EQ(connections.size(), 4U);
    EXPECT_TRUE(connections[0].blocked());
    EXPECT_FALSE(connections[1].blocked());
    EXPECT_NE(connections[0].describe(), "");
    EXPECT_NE(connections[1].describe().find("Doubler"), std::string::npos);
    EXPECT_NE(connections[3].describe().find("TakesEveryForm"), std::string::npos);
    EXPECT_EQ(Connection().describe(), "");
}

TEST_F(SignalTest, HandlesOutliveTheSignalButNotTheCallbacksCaptures) {
    auto signal = std::make_unique<Signal<>>();
    Connection const first = signal->addCallback([token = token] {});
    Connection const second = signal->addCallback([token = token] {});
    first.disconnect();
    EXPECT_EQ(held(), 1);
    signal.reset();
    EXPECT_EQ(held(), 0);
    for (Connection const& ended : {first, second, Connection()}) {
        EXPECT_FALSE(ended.connected());
        ended.block();
        EXPECT_FALSE(ended.blocked());
        ended.unblock();
        ended.disconnect();
    }
}

TEST_F(SignalTest, ScopedOwnersEndWhatTheyOwnAndCopiedSignalsOwnNothing) {
    Signal<int> signal;
    {
        ScopedConnection first = signal.addCallback(note);
        ScopedConnection owner = std::move(first);
        {
            urRTB::ScopedBlock const block(owner.get());
            signal.emit(1);
        }
        Signal<int>(signal).emit(2);
        owner = signal.addCallback([](int) { log += "second"; });
        signal.emit(3);
    }
    EXPECT_FALSE(signal.hasConnections());
    EXPECT_EQ(log, "second");
    EXPECT_TRUE(ScopedConnection(signal.addCallback(note)).release().connected());
}

TEST_F(SignalTest, AClientEndsItsConnectionsAndForgetsThoseOfDestroyedSignals) {
    Signal<int> lasting;
    {
        SignalClient client;
        lasting.addCallback(client, note);
        for (int i = 0; i < 1000; ++i) client.own(Signal<int>().addCallback(new Doubler(token)));
        EXPECT_EQ(client.connectionCount(), 1U);
        EXPECT_LT(held(), 8);
    }
    EXPECT_FALSE(lasting.hasConnections());
}

TEST_F(SignalTest, TheEndOfAConnectionMayDestroyTheSignalAndTheClientDuringAnEmission) {
    struct Node {
        explicit Node(std::shared_ptr<int> held) : token(std::move(held)) {}
        std::shared_ptr<int> token;
        Signal<> signal;
        SignalClient client;
    };
    auto const ownedByItsCallbacks = [&] {
        auto const node = std::make_shared<Node>(token);
        for (int i = 0; i < 3; ++i) node->signal.addCallback(node->client, [node] { log += "."; });
        return node.get();
    };
    ownedByItsCallbacks()->signal.disconnectAll();
    ownedByItsCallbacks()->client.disconnectAll();
    Node* const node = ownedByItsCallbacks();
    node->signal.addCallback(node->client, [&, node, token = token] {
        node->client.disconnectAll();
        EXPECT_EQ(held(), 1);  // a running callback keeps its captures
    });
    node->signal.addCallback([] { log += "never"; });
    node->signal.emit();
    EXPECT_EQ(log, "...");
    EXPECT_EQ(held(), 0);
}

TEST_F(SignalTest, TheEndOfAConnectionMayRemoveTheNextOneOrAddAnother) {
    Signal<> signal;
    Connection self, next;
    auto const atEnd = [](auto act) { return std::shared_ptr<void>(nullptr, [act](void*) { act(); }); };
    self = signal.addCallback([&, end = atEnd([&] { next.disconnect(); })] { self.disconnect(); });
    next = signal.addCallback([] { log += "next"; });
    signal.addCallback([end = atEnd([&] { signal.addCallback([token = token] {}); })] { log += "last"; });
    signal.emit();
    EXPECT_EQ(log, "last");
    signal.disconnectAll();
    EXPECT_EQ(held(), 1);
}

TEST_F(SignalTest, DisconnectingInAnyOrderNeverSearches) {
    Signal<int> signal;
    std::vector<Connection> connections(200'000);
    auto const start = std::chrono::steady_clock::now();
    for (auto& connection : connections) connection = signal.addCallback(note);
    std::shuffle(connections.begin(), connections.end(), std::mt19937(5));
    for (auto const& connection : connections) connection.disconnect();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));  // a search would take minutes
}

}  // namespace
