// Passes the events of a transfer to its connection.
#include "tools/nxhost/Connection.h"

#include <string>

#include "foundation/nxRFL/ExposeClass.h"
#include "support/services/Timeline.h"

namespace nxhost {

using urString::CString;

namespace {

/// The bytes that libcurl uses during a transfer, including its buffers.
constexpr std::size_t bytesOfTransfer = std::size_t(64) << 10U;
constexpr std::size_t bytesOfField = 128;  ///< besides its texts

template <class Fields>
std::size_t bytesOf(Fields const& fields) {
    std::size_t bytes = 0;
    for (auto const& [name, value] : fields) bytes += bytesOfField + name.size() + value.size();
    return bytes;
}

/// The bytes of what a transfer copies of its request. Escapes make posted data three times as long.
std::size_t bytesToSend(nxNet::Request const& request) {
    constexpr std::size_t escape = 3;
    return 2 * request.getUrl().size() + bytesOf(request.getHeaders()) + escape * bytesOf(request.getPostData());
}

}  // namespace

CString Connection::responseHeader(CString const& name) const {
    auto const found = responseHeaders_.find(CString(name).toLowerCase());
    return found == responseHeaders_.end() ? CString() : found->second;
}

void Connection::chargeTo(std::shared_ptr<ur::Account> const& account) {
    if (!charge_) charge_ = ur::Charge(account, sizeof(Connection));
}

void Connection::deliver(TransferEvent event) {
    nxSupport::ScriptCallScope const call("connection");
    std::visit([this](auto& what) { on(what); }, event);
}

void Connection::onStart() {
    if (transfers_.running(*this)) return;
    auto const request = getRequest();
    transferCharge_ = ur::Charge(charge_.account(), bytesOfTransfer + (request ? bytesToSend(*request) : 0));
    responseStatus_ = 0;
    responseHeaders_.clear();
    responseCharge_ = {};
    progress_ = {};
    errorText_.clear();
    auto* const timeline = nxSupport::Timeline::active();
    if (timeline && request) span_ = timeline->beginSpan(request->getHTTPMethod() + " " + request->getUrl());
    transfers_.start(*this);
}

void Connection::endSpan(std::string_view result) noexcept {
    auto* const timeline = nxSupport::Timeline::active();
    if (timeline && span_) timeline->endSpan(*span_, result);
    span_.reset();
}

void Connection::onCancel() {
    transfers_.stop(*this);
    endSpan("cancelled");
    transferCharge_ = {};
    progressFunc_.set(nullptr);
}

void Connection::on(Answered& event) {
    responseStatus_ = event.status;
    responseCharge_ = ur::Charge(charge_.account(), bytesOf(event.headers));
    responseHeaders_ = std::move(event.headers);
}

void Connection::on(Progressed const& event) {
    progress_ = event;
    progressFunc_();
}

void Connection::on(Completed const& /*event*/) {
    endSpan(std::to_string(responseStatus_));
    transferCharge_ = {};
    progressFunc_.set(nullptr);
    setComplete();
}

void Connection::on(Failed& event) {
    transferCharge_ = {};
    errorText_ = std::move(event.text);
    endSpan(errorText_.view());
    progressFunc_.set(nullptr);
    setFailed(static_cast<int>(event.error));
}

// [expose]
void exposeNetwork(nxRFL::Database& database) {
    nxRFL::ExposeClass<Connection>(database, "nxhost::Connection")
        .addBase<nxNet::Connection>()
        .addProperty("responseStatus", &Connection::responseStatus)
        .addMapIterator("responseHeaders", &Connection::responseHeaders)
        .addMethod("responseHeader", &Connection::responseHeader, {"name"})
        .addProperty("received", [](Connection& self) { return self.progress().received; })
        .addProperty("receiveTotal", [](Connection& self) { return self.progress().receiveTotal; })
        .addProperty("sent", [](Connection& self) { return self.progress().sent; })
        .addProperty("sendTotal", [](Connection& self) { return self.progress().sendTotal; })
        .addMethod("setProgressFunc", &Connection::setProgressFunc, {"callback"})
        .addProperty("timeLimit", &Connection::timeLimit, &Connection::setTimeLimit)
        .addProperty("errorText", &Connection::errorText);
}
// [expose]

}  // namespace nxhost
