// A host whose transfers are performed by the tests.
#pragma once

#include <functional>

#include "net/Manager.h"

namespace nxNet {

class Transfer : public Connection {
public:
    Transfer() { ++alive; }
    Transfer(Transfer const& other) : Connection(other) { ++alive; }
    Transfer& operator=(Transfer const&) = default;
    ~Transfer() override { --alive; }
    void arrive(std::string_view bytes) { dataArrived(ur::make<urThread::Buffer>(bytes)); }

    static inline int alive = 0;
    int started = 0;
    std::function<void()> onStop = [] {};

private:
    void onStart() override { ++started; }
    void onCancel() override { onStop(); }
};

class Transfers : public Manager {
public:
    ur::Reference<Transfer> last;

private:
    ur::Reference<Request> onCreateRequest() override { return ur::make<Request>(); }
    ur::Reference<Connection> onCreateConnection() override { return last = ur::make<Transfer>(); }
};

}  // namespace nxNet
