// What a sink does around its hooks.
#include "support/messaging/DataSink.h"

#include "foundation/ur/keepAlive.h"

namespace nxSupport {

DataSink::~DataSink() = default;

void DataSink::onClose() {}

void DataSink::processData(ur::Reference<urThread::Buffer> data) {
    auto const self = ur::keepAlive(*this);
    onData(data);  // a copy: the data outlives what the sink does to its own reference
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
