// Compares random callbacks that connect, disconnect, block, emit again and throw with a plain model.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "foundation/urRTB/Signal.h"

namespace {

class Play {
public:
    explicit Play(unsigned seed) : random_(seed) {}

    int run() {
        for (int step = 0; step < 60; ++step) {
            act(), emit();
            // Nothing stays locked: exactly the connected callbacks still hold their captures.
            auto const isConnected = [](Entry const& entry) { return entry.connected; };
            EXPECT_EQ(token_.use_count() - 1, std::count_if(entries_.begin(), entries_.end(), isConnected));
            EXPECT_EQ(signal_.connectionCount() + 1, static_cast<std::size_t>(token_.use_count()));
        }
        return calls_;
    }

private:
    struct Entry {
        urRTB::Connection connection;
        bool connected = true;
        int blocks = 0;
    };
    struct Emission {
        std::size_t position;  ///< one after the last callback called
        std::size_t end;       ///< the number of connections made before the emission; without limit for an open one
    };

    // The callback that the innermost emission has to call next; its end when none is left.
    [[nodiscard]] std::size_t due() const {
        std::size_t id = emissions_.back().position;
        std::size_t const end = std::min(emissions_.back().end, entries_.size());
        while (id < end && (!entries_[id].connected || entries_[id].blocks > 0)) ++id;
        return id;
    }
    void emit() {
        bool const openly = draw(2) == 0;
        emissions_.push_back({0, openly ? std::size_t(-1) : entries_.size()});
        try {
            openly ? signal_.emitOpenly() : signal_.emit();
            EXPECT_EQ(due(), std::min(emissions_.back().end, entries_.size()));
        } catch (std::size_t thrower) {
            EXPECT_EQ(thrower + 1, emissions_.back().position);
        }
        emissions_.pop_back();
    }
    void called(std::size_t id) {
        EXPECT_EQ(id, due());
        emissions_.back().position = id + 1;
        if (++calls_ % 4 != 0) act();
        if (draw(20) == 0) throw id;
    }
    void act() {
        std::size_t const id = draw(entries_.size() + 1);
        if (id == entries_.size()) return connect();
        Entry& entry = entries_[id];
        switch (draw(12)) {
            case 0: return disconnectAll();
            case 1:
            case 2: return emit();
            case 3: ++entry.blocks; return entry.connection.block();
            case 4:
            case 5: entry.blocks -= entry.blocks > 0 ? 1 : 0; return entry.connection.unblock();
            case 6:
            case 7: entry.connected = false; return entry.connection.disconnect();
            default: return connect();
        }
    }
    void connect() {
        entries_.push_back({signal_.addCallback([this, id = entries_.size(), token = token_] { called(id); })});
    }
    void disconnectAll() {
        for (Entry& entry : entries_) entry.connected = false;
        signal_.disconnectAll();
        EXPECT_FALSE(signal_.hasConnections());
    }
    std::size_t draw(std::size_t below) { return random_() % below; }

    std::shared_ptr<int> const token_ = std::make_shared<int>();
    std::mt19937 random_;
    int calls_ = 0;
    std::vector<Emission> emissions_;
    std::vector<Entry> entries_;
    urRTB::Signal<> signal_;
};

TEST(Emission, CallsEveryConnectedAndUnblockedCallbackInTurn) {
    int calls = 0;
    for (unsigned seed = 1; seed <= 2000 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        calls += Play(seed).run();
    }
    EXPECT_GT(calls, 200'000);  // the play was not idle
}

}  // namespace
