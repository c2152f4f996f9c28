// A host that performs transfers, here from a table of pages, and a client and a script that use it.
#include <cstdio>
#include <deque>
#include <functional>

#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/values.h"
#include "net/Manager.h"
#include "net/reflection.h"

using nxNet::Connection;
using urString::CString;

using Loop = std::deque<std::function<void()>>;

constexpr int noSuchPage = 404;

// [connection]
class PageConnection : public Connection {
public:
    explicit PageConnection(Loop& loop) : loop_(loop) {}

protected:
    // The function in the loop holds the connection, so that clients need not.
    void onStart() override {
        running_ = true;
        loop_.emplace_back([self = ur::Reference<PageConnection>(this)] { self->answer(); });
    }
    void onCancel() override { running_ = false; }

private:
    void answer() {
        if (!running_) return;
        if (getRequest()->getUrl() != "page:/greeting") return setFailed(noSuchPage);
        setConnected();
        for (char const* block : {"Hello, ", "world"})
            if (running_) dataArrived(ur::make<urThread::Buffer>(block));  // the client may cancel in this call
        if (running_) setComplete();
    }

    Loop& loop_;
    bool running_ = false;
};
// [connection]

// [manager]
class PageManager : public nxNet::Manager {
public:
    explicit PageManager(Loop& loop) : loop_(loop) {}

protected:
    ur::Reference<nxNet::Request> onCreateRequest() override { return ur::make<nxNet::Request>(); }
    ur::Reference<Connection> onCreateConnection() override { return ur::make<PageConnection>(loop_); }

private:
    Loop& loop_;
};
// [manager]

// [client]
void fetch(nxNet::Manager& manager, CString const& url) {
    auto const request = manager.createRequest();
    request->setUrl(url);
    auto const connection = manager.createConnection();
    connection->setRequest(request);
    connection->setDataFunc([](ur::Reference<urThread::Buffer> const& block) {
        std::printf("%d bytes\n", static_cast<int>(block->size()));
    });
    connection->setStatusFunc([connection, url] {
        if (connection->getStatus() == Connection::Complete) std::printf("%s: fetched\n", url.c_str());
        if (connection->getStatus() == Connection::ConnectionFailed)
            std::printf("%s: error %d\n", url.c_str(), connection->getError());
    });
    connection->start();
}
// [client]

void run(Loop& loop) {
    for (; !loop.empty(); loop.pop_front()) loop.front()();
}

int main() {
    Loop loop;
    PageManager manager(loop);
    fetch(manager, "page:/greeting");
    fetch(manager, "page:/nowhere");
    run(loop);

    // [script]
    nxRFL::Database database;
    nxNet::initializeReflection(&database);
    nxLC::State state(database);
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    nxRFL::write(writer, static_cast<nxNet::Manager*>(&manager));
    auto const error = state.run(R"(
        local manager = ...
        local connection = manager:createConnection()
        local request = manager:createRequest()
        request.url = "page:/greeting"
        request:addHeader("Accept-Language", "en")
        connection:setRequest(request)
        local page
        connection:setDataFunc(function(block)
            page = urThread.mergeBuffers(page, block)
            if page.data:find("Hello") then connection:cancel() end
        end)
        connection:setStatusFunc(function() print(connection.status, page and page.data) end)
        connection:start())",
                                 "@fetch.lua", arguments, results);
    // [script]
    if (error) std::printf("%s\n", error->what());
    run(loop);
}
