// The registered members.
#include "net/reflection.h"

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxRFL/ExposeFunction.h"
#include "net/Manager.h"

namespace nxNet {

using nxRFL::ExposeClass;
using urString::CString;
using urThread::Buffer;

namespace {

CString bytesOf(Buffer const& buffer) { return CString(buffer.data(), buffer.size()); }

/// Empty for a status that has no name.
char const* statusName(Connection const& connection) {
    switch (connection.getStatus()) {
        case Connection::NotConnected: return "NotConnected";
        case Connection::Connected: return "Connected";
        case Connection::ConnectionFailed: return "ConnectionFailed";
        case Connection::Cancelled: return "Cancelled";
        case Connection::Complete: return "Complete";
    }
    return "";
}

}  // namespace

void initializeReflection(nxRFL::Database* database) {
    ExposeClass<Buffer>(*database, "urThread::Buffer")
        .setHasHiddenSubclasses()
        .addProperty("size", &Buffer::size)
        .addProperty("data", &bytesOf);
    ExposeClass<Connection>(*database, "nxNet::Connection")
        .setHasHiddenSubclasses()
        .addMethod("setRequest", &Connection::setRequest, {"request"})
        .addMethod("setDataFunc", &Connection::setDataFunc, {"callback"})
        .addMethod("setStatusFunc", &Connection::setStatusFunc, {"callback"})
        .addProperty("request", &Connection::getRequest)
        .addMethod("start", &Connection::start)
        .addMethod("cancel", &Connection::cancel)
        .addProperty("status", &statusName)
        .addProperty("error", &Connection::getError);
    ExposeClass<Manager>(*database, "nxNet::Manager")
        .setHasHiddenSubclasses()
        .addMethod("createRequest", &Manager::createRequest)
        .addMethod("createConnection", &Manager::createConnection);
    ExposeClass<Request>(*database, "nxNet::Request")
        .addProperty("url", &Request::getUrl, &Request::setUrl)
        .addProperty("httpMethod", &Request::getHTTPMethod, &Request::setHTTPMethod)
        .addProperty("fileForUpload", &Request::getFileForUpload, &Request::setFileForUpload)
        .addMethod("addHeader", &Request::addHeader, {"name", "value"})
        .addMapIterator("headers", &Request::getHeaders)
        .addMethod("addPostData", &Request::addPostData, {"name", "value"})
        .addMapIterator("postData", &Request::getPostData);
    nxRFL::ExposeFunction(*database, "urThread").add("mergeBuffers", &urThread::mergeBuffers, {"first", "second"});
}

}  // namespace nxNet
