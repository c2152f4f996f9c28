// Tests counting, refusal and collection.
#include "foundation/ur/Account.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using ur::Account;
using ur::BudgetSpent;
using ur::Charge;

TEST(Account, CountsLiveBytesAndRefusesTooMany) {
    auto const account = std::make_shared<Account>();
    account->changeScript(100);
    account->setBounds({.allowed = 1000});
    Charge first(account, 400);
    Charge second = first;
    EXPECT_EQ(account->used(), 900U);
    EXPECT_THROW(second.add(101), BudgetSpent);
    EXPECT_THROW(Charge{second}, BudgetSpent);
    EXPECT_EQ(account->used(), 900U);
    second.add(100);
    EXPECT_EQ(second.bytes(), 500U);
    first = std::move(second);
    EXPECT_EQ(account->native(), 500U);
    first.set(2000);  // already in use
    EXPECT_FALSE(account->allows(1));
    account->setBounds({});
    EXPECT_TRUE(account->allows(Account::unlimited - 2100));
    first = {};
    EXPECT_EQ(account->used(), 100U);
    first.add(Account::unlimited);  // without an account
}

struct Garbage final : Account::Collector {
    explicit Garbage(std::shared_ptr<Account> charged) : account(std::move(charged)) {}
    void collect() noexcept override {
        ++collections;
        kept.clear();
        account->noteCollection();
    }
    std::shared_ptr<Account> account;
    std::vector<Charge> kept;
    int collections = 0;
};

TEST(Account, LooksForGarbageBeforeItRefuses) {
    auto const account = std::make_shared<Account>();
    Garbage garbage(account);
    account->setBounds({.allowed = 1600, .collectAt = 1200, .step = 100, .collector = &garbage});
    garbage.kept.emplace_back(account, 1200);
    EXPECT_FALSE(account->wantsCollection());
    garbage.kept.emplace_back(account, 1);
    EXPECT_TRUE(account->wantsCollection());
    Charge const live(account, 1500);
    EXPECT_EQ(garbage.collections, 1);
    EXPECT_THROW(Charge(account, 101), BudgetSpent);
    EXPECT_EQ(garbage.collections, 2);
    // Now nearly all is in use: the next collection is due at the limit.
    EXPECT_EQ(account->bounds().collectAt, 1600U);
    EXPECT_FALSE(account->wantsCollection());
}

TEST(Account, WantsACollectionWhenNativeBytesHaveDoubled) {
    Account account;
    std::size_t const pace = Account::leastPace;
    auto const expectWantedAfter = [&](std::size_t bytes) {
        account.take(bytes);
        EXPECT_FALSE(account.wantsCollection());
        account.take(1);
        EXPECT_TRUE(account.wantsCollection());
    };
    expectWantedAfter(pace);
    account.take(3 * pace - 1);
    account.noteCollection();
    expectWantedAfter(4 * pace);
    // A collection costs as much as the state of the script is large.
    account.changeScript(100 * pace);
    account.noteCollection();
    expectWantedAfter(50 * pace);
}

}  // namespace
