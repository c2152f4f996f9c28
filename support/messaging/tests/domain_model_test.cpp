// Random lives of two domains, beside a few plain lines that say what should be seen.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <tuple>

#include "support/messaging/CallInfoControl.h"
#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;

// A domain as its description has it: call informations are numbers, 0 for none.
struct Plain {
    std::vector<Context::Mode> modes;
    std::vector<Context const*> contexts;
    int info = 0;
    std::size_t depth = 0;
    std::vector<std::pair<int, std::size_t>> saved;

    void begin(Context::Mode mode, int& made) {
        if (mode == Context::Bare) return;
        modes.push_back(mode);
        if (info == 0) std::tie(info, depth) = std::pair(++made, modes.size());
    }
    void end(Context::Mode mode) {
        if (mode == Context::Bare) return;
        if (depth == modes.size()) info = 0, depth = 0;
        modes.pop_back();
    }
};

class Lives {
public:
    explicit Lives(unsigned seed) : random_(seed) {
        for (Host& host : hosts_)
            host.provide = [this](CallInfo& info) { info.add(numbers_.emplace_back(new int(made_)).get()); };
    }
    ~Lives() {
        while (!scopes_.empty()) end();
    }

    void step() {
        auto const chance = random_() % 10;
        if (chance == 0) return suppress();
        if (chance < 5 && !scopes_.empty()) return end();
        begin();
    }
    void compare() {
        for (int i : {0, 1}) {
            Plain const& plain = plain_[i];
            EXPECT_EQ(hosts_[i].contextStack(), plain.modes);
            EXPECT_EQ(hosts_[i].getCurrentContext(), plain.contexts.empty() ? nullptr : plain.contexts.back());
            EXPECT_EQ(hosts_[i].getRootContext(), plain.contexts.empty() ? nullptr : plain.contexts.front());
            EXPECT_EQ(hosts_[i].callInfoSuppressed(), !plain.saved.empty());
        }
        int const* const number = ci().get<int>();
        EXPECT_EQ(number ? *number : 0, order_.empty() ? 0 : plain_[order_.back()].info);
    }

private:
    struct Scope {
        int host;
        std::unique_ptr<Context> context;  // or else
        std::unique_ptr<CallInfoControl> control;
    };

    void begin() {
        int const i = static_cast<int>(random_() % 2);
        auto mode = static_cast<Context::Mode>(random_() % 12);
        if (mode == Context::Bootstrap) mode = Context::Bare;  // nobody could number its call information
        plain_[i].begin(mode, made_);
        scopes_.push_back({i, std::make_unique<Context>(&hosts_[i], mode), nullptr});
        plain_[i].contexts.push_back(scopes_.back().context.get());
        order_.push_back(i);
    }
    void suppress() {
        int const i = static_cast<int>(random_() % 2);
        scopes_.push_back({i, nullptr, std::make_unique<CallInfoControl>(hosts_[i])});
        scopes_.back().control->suppress();
        plain_[i].saved.emplace_back(std::exchange(plain_[i].info, 0), std::exchange(plain_[i].depth, 0));
    }
    void end() {
        Plain& plain = plain_[scopes_.back().host];
        if (scopes_.back().context) {
            plain.end(scopes_.back().context->mode());
            plain.contexts.pop_back();
            order_.pop_back();
        } else {
            std::tie(plain.info, plain.depth) = plain.saved.back();
            plain.saved.pop_back();
        }
        scopes_.pop_back();
    }

    std::mt19937 random_;
    Host hosts_[2];
    Plain plain_[2];
    std::vector<int> order_;     // of the active contexts' domains
    std::vector<Scope> scopes_;  // end in the reverse order of their beginning
    std::vector<std::unique_ptr<int>> numbers_;
    int made_ = 0;
};

TEST(DomainModel, AgreesWithThePlainLinesOnEveryStep) {
    for (unsigned seed = 1; seed <= 50; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Lives lives(seed);
        for (int step = 0; step < 400 && !testing::Test::HasFailure(); ++step) {
            lives.step();
            lives.compare();
        }
    }
}

}  // namespace
