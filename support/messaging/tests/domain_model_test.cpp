// Makes random contexts on two domains and compares them with a plain model.
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;

/// The expected state of a domain. Call informations are numbers, 0 for none.
struct Plain {
    std::vector<Context::Mode> modes;
    std::vector<Context const*> contexts;
    int info = 0;
    bool suppressed = false;
};

/// Opens random nested contexts and suppressions. The end of each restores the state before it.
class RandomDomains {
public:
    explicit RandomDomains(unsigned seed) : random_(seed) {
        for (Host& host : hosts_)
            host.provide = [this](CallInfo& info) { info.add(numbers_.emplace_back(new int(made_)).get()); };
    }
    /// Opens `scopes` scopes inside a context of the domain `latest`; -1 for none.
    void live(std::size_t scopes, int latest) {
        for (; scopes > 0; --scopes) {
            int const i = static_cast<int>(random_() % 2);
            Plain const before = plain_[i];
            random_() % 6 == 0 ? suppress(i, latest) : begin(i);
            plain_[i] = before;
            compare(latest);
        }
    }

private:
    void begin(int i) {
        auto mode = static_cast<Context::Mode>(random_() % 12);
        if (mode == Context::Bootstrap) mode = Context::Bare;  // its call information has no number
        if (mode != Context::Bare) {
            plain_[i].modes.push_back(mode);
            if (plain_[i].info == 0) plain_[i].info = ++made_;
        }
        Context const context(&hosts_[i], mode);
        plain_[i].contexts.push_back(&context);
        compare(i);
        live(random_() % 5 / 2, i);
    }
    void suppress(int i, int latest) {
        plain_[i].info = 0;
        plain_[i].suppressed = true;
        CallInfoControl control(hosts_[i]);
        control.suppress();
        compare(latest);
        live(random_() % 5 / 2, latest);
    }
    void compare(int latest) {
        for (int i : {0, 1}) {
            auto const& [modes, contexts, info, suppressed] = plain_[i];
            EXPECT_EQ(hosts_[i].contextStack(), modes);
            EXPECT_EQ(hosts_[i].getCurrentContext(), contexts.empty() ? nullptr : contexts.back());
            EXPECT_EQ(hosts_[i].getRootContext(), contexts.empty() ? nullptr : contexts.front());
            EXPECT_EQ(hosts_[i].callInfoSuppressed(), suppressed);
        }
        int const* const number = ci().get<int>();
        EXPECT_EQ(number ? *number : 0, latest < 0 ? 0 : plain_[latest].info);
    }

    std::mt19937 random_;
    Host hosts_[2];
    Plain plain_[2];
    std::vector<std::unique_ptr<int>> numbers_;
    int made_ = 0;
};

TEST(DomainModel, AgreesWithThePlainLinesOnEveryStep) {
    for (unsigned seed = 1; seed <= 50 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomDomains(seed).live(100, -1);
    }
}

}  // namespace
