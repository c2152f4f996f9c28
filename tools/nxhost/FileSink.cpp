// Data into a file.
#include "tools/nxhost/FileSink.h"

#include "foundation/nxRFL/Exception.h"

namespace nxhost {
namespace {

void check(urUtil::Error const& error) {
    if (error.isError()) throw nxRFL::Exception(urString::CString(error.message()));
}

}  // namespace

FileSink::FileSink(urString::CString const& path) {
    if (path.find('\0') != urString::CString::npos) throw nxRFL::Exception("the name of a file has no NULs");
    check(file_.open(urString::IString(path.c_str())));
}

void FileSink::onData(ur::Reference<urThread::Buffer> data) {
    if (closed()) throw nxRFL::Exception("the file has been closed");
    check(file_.write(data->data(), data->size()));
}

void FileSink::onClose() {
    if (!closed() && completed()) check(file_.commit());
}

}  // namespace nxhost
