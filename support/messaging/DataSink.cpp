// Calls a sink's hooks and records that it is closed.
#include "support/messaging/DataSink.h"

#include "foundation/ur/keepAlive.h"

namespace nxSupport {

DataSink::~DataSink() = default;

void DataSink::onClose() {}

void DataSink::processData(ur::Reference<urThread::Buffer> data) {
    auto const self = ur::keepAlive(*this);
    onData(data);  // a copy, so that the data survives if the sink releases its own reference
}

void DataSink::close(bool completed) {
    auto const self = ur::keepAlive(*this);
    completed_ = completed;
    try {
        onClose();
    } catch (...) {
        open_ = false;
        throw;
    }
    open_ = false;
}

}  // namespace nxSupport
