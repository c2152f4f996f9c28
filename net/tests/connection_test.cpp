// The reports of a connection, and what its functions may do meanwhile.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "net/tests/Transfers.h"

namespace {

using namespace nxNet;
using BufferRef = ur::Reference<urThread::Buffer>;

TEST(Request, KeepsOneValueForEachNameInTheOrderOfNames) {
    Request request;
    for (char const* name : {"m", "b", "b"}) request.addHeader(name, request.getHTTPMethod());
    // Names and values that are texts in the headers themselves, which grow and move meanwhile.
    for (int i = 0; i < 100; ++i)
        request.addHeader(urString::CString::format("x%03d", i), request.getHeaders().begin()->second);
    request.addHeader(request.getHeaders().find("x099")->second, request.getHeaders().begin()->first);
    std::string text;
    for (auto const& [name, value] : request.getHeaders()) text.append(name).append("=").append(value).append(" ");
    EXPECT_EQ(text.substr(0, 33), "GET=b b=GET m=GET x000=GET x001=G");
}

TEST(Request, IsChargedForWhatItHolds) {
    auto const account = std::make_shared<ur::Account>(), other = std::make_shared<ur::Account>();
    auto request = ur::make<Request>();
    urString::CString const page(1000, 'x');
    request->addHeader("h", page);
    request->chargeTo(account);
    request->chargeTo(other);  // charged already
    std::size_t const before = account->native();
    for (std::size_t const size : {1000U, 400U, 700U}) {
        request->setUrl(page.substr(0, size));
        EXPECT_EQ(account->native(), before + size);
    }
    request->setHTTPMethod(page);
    request->setFileForUpload(page);
    request->addPostData(page, page);
    std::size_t const whole = account->native();
    EXPECT_GE(whole, before + 4700 - 3);
    request->addPostData(page, page);
    EXPECT_EQ(account->native(), whole);
    account->setBounds({.allowed = account->used() + 500});
    request->addHeader("h", page);
    EXPECT_THROW(request->addHeader("i", page), ur::BudgetSpent);
    EXPECT_THROW(*ur::make<Request>() = *request, ur::BudgetSpent);
    request = nullptr;
    EXPECT_EQ(account->native(), 0U);
}

struct End {
    char const* name;
    Connection::Status status;
    void (*reach)(Connection& connection);
};

/// Every way to end.
struct ConnectionEnd : testing::TestWithParam<End> {
    ~ConnectionEnd() override {
        transfer.reset();
        EXPECT_EQ(Transfer::alive, 0);
    }
    void end() { GetParam().reach(*transfer); }

    std::string log;
    ur::Reference<Transfer> transfer = ur::make<Transfer>();
};

INSTANTIATE_TEST_SUITE_P(Every, ConnectionEnd,
                         ::testing::Values(End{"Complete", Connection::Complete, [](auto& c) { c.setComplete(); }},
                                           End{"Failed", Connection::ConnectionFailed, [](auto& c) { c.setFailed(7); }},
                                           End{"Cancelled", Connection::Cancelled, [](auto& c) { c.cancel(); }}),
                         [](auto const& end) { return end.param.name; });

TEST_P(ConnectionEnd, IsToldOnceWithTheDataFunctionReleasedBefore) {
    auto data = std::make_shared<int>();
    std::weak_ptr const observed = data;
    transfer->setDataFunc([this, data = std::move(data)](BufferRef const& block) { log += block->data()[0]; });
    transfer->setStatusFunc([&] { log += std::to_string(transfer->getStatus()) + (observed.expired() ? "!" : "?"); });
    transfer->onStop = [this] { log += std::to_string(transfer->getStatus()) + "stop "; };
    transfer->setConnected();
    transfer->setConnected();
    transfer->arrive("block");
    end();
    transfer->arrive("late");
    transfer->setFailed(-3);
    EXPECT_EQ(transfer->getStatus(), Connection::ConnectionFailed);
    EXPECT_EQ(transfer->getError(), -3);
    std::string const stopped = GetParam().status == Connection::Cancelled ? "1stop " : "";
    EXPECT_EQ(log, "1?b" + stopped + std::to_string(GetParam().status) + "!");
}

TEST_P(ConnectionEnd, KeepsFunctionsThatAreInstalledWhileItIsTold) {
    EXPECT_EQ(transfer->getError(), 0);
    transfer->setStatusFunc([this] { transfer->setStatusFunc([this] { log += "again"; }); });
    end();
    EXPECT_EQ(log, "");
    end();
    EXPECT_EQ(log, "again");
}

TEST_P(ConnectionEnd, MayDropOrBeHeldByItsListeners) {
    for (int which : {0, 1, 2}) {
        Transfer& held = *transfer;
        if (which == 0) held.setStatusFunc([this, text = std::string(100, 'x')] { transfer.reset(), log += text; });
        if (which == 1) held.setStatusFunc([transfer = transfer] { transfer->setStatusFunc({}); });
        if (which == 2) held.setDataFunc([transfer = transfer](auto&&) {});
        if (which != 0) transfer.reset();
        GetParam().reach(held);
        EXPECT_EQ(Transfer::alive, 0);
        transfer = ur::make<Transfer>();
    }
    EXPECT_EQ(log, std::string(100, 'x'));
}

TEST_P(ConnectionEnd, MayComeFromTheMiddleOfABlockAndBeThrownOutOf) {
    transfer->setStatusFunc([] { throw std::runtime_error("status"); });
    transfer->setDataFunc([this, text = std::string(100, 'x')](auto&&) {
        EXPECT_THROW(end(), std::runtime_error);
        EXPECT_EQ(transfer->getStatus(), GetParam().status);
        transfer.reset();
        log = text;  // still valid, although the connection has released the function and is destroyed
    });
    transfer->arrive("block");
    EXPECT_EQ(log, std::string(100, 'x'));
}

TEST(Connection, CallsListenersThatReplaceThemselvesAndReportWithinReports) {
    Transfer transfer;
    std::string log;
    transfer.setDataFunc([&, calls = 0](BufferRef const& block) mutable {
        log.append(block->data(), 1).append(std::to_string(++calls)).append(" ");
        if (calls == 1) transfer.arrive("inner");
        if (calls == 3) transfer.setDataFunc([&](BufferRef const& next) { log.append(next->data(), 1); });
        if (calls == 3) log += std::to_string(calls) + " ";
    });
    for (char const* block : {"a", "b", "c"}) transfer.arrive(block);
    EXPECT_EQ(log, "a1 i2 b3 3 c");
}

TEST(Connection, SurvivesAHostThatDropsItWhenItStops) {
    auto transfer = ur::make<Transfer>();
    Transfer& raw = *transfer;
    Connection::Status notified{};
    raw.setStatusFunc([&] { notified = raw.getStatus(); });
    raw.onStop = [&] { transfer.reset(); };
    raw.cancel();
    EXPECT_EQ(notified, Connection::Cancelled);
    EXPECT_EQ(Transfer::alive, 0);
}

TEST(Connection, CopiesItsFunctions) {
    Transfer first;
    std::string log;
    first.setDataFunc([&, calls = 0](auto&&) mutable { log += std::to_string(++calls); });
    first.arrive("");
    Transfer second = first;
    Transfer third;
    third = second;
    for (Transfer* each : {&first, &second, &third}) each->arrive("");
    EXPECT_EQ(log, "1222");
}

}  // namespace
