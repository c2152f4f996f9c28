// What a sink does around its hooks.
#include "support/messaging/DataSink.h"

#include <utility>

namespace nxSupport {

namespace {

// A hold on a sink that is held already; one that nobody holds lives outside the heap, and must not be counted.
ur::Reference<DataSink> held(DataSink& sink) {
    return ur::Reference<DataSink>(sink.referenceCount() > 0 ? &sink : nullptr);
}

}  // namespace

DataSink::~DataSink() = default;

void DataSink::onClose() {}

void DataSink::processData(ur::Reference<urThread::Buffer> data) {
    auto const self = held(*this);
    onData(std::move(data));
}

void DataSink::close(bool completed) {
    auto const self = held(*this);
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
