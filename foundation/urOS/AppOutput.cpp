// The application's output.
#include "foundation/urOS/AppOutput.h"

#include <cerrno>
#include <cstdio>

#include "foundation/urOS/File.h"

namespace urOS {
namespace {

/// The C library's standard output, so that text stays in order with `printf`.
class StandardOutput final : public IOStream {
public:
    urUtil::Error read(void* /*buffer*/, std::size_t /*count*/, std::size_t* done) override {
        if (done) *done = 0;
        return urUtil::Error::fromSystem(EBADF, "standard output");
    }
    urUtil::Error write(void const* buffer, std::size_t count, std::size_t* done) override {
        std::size_t const written = std::fwrite(buffer, 1, count, stdout);
        if (done) *done = written;
        bool const arrived = written == count && std::fflush(stdout) == 0;
        return arrived ? urUtil::Error() : urUtil::Error::fromSystem(errno, "standard output");
    }
};

}  // namespace

AppOutputStream::AppOutputStream() : OStream(Flush::afterEachPrint), own_(std::make_unique<StandardOutput>()) {
    redirect(own_.get());
}

AppOutputStream::~AppOutputStream() { redirect(nullptr); }

urUtil::Error AppOutputStream::open(urString::IString const& name, bool append) {
    redirect(nullptr);
    if (name == urString::IString("-")) {
        own_ = std::make_unique<StandardOutput>();
    } else {
        auto file = std::make_unique<File>();
        urUtil::Error error = file->open(name, append ? openWrite | openAppend : openForWriting);
        if (error.isError()) return error;
        own_ = std::move(file);
    }
    redirect(own_.get());
    return {};
}

void AppOutputStream::open(IOStream& stream) {
    redirect(&stream);
    own_.reset();
}

AppOutputStream& AppOutput::getInstance() {
    // Never destroyed: static objects may still print while the process ends.
    static auto& instance = *new AppOutputStream;
    return instance;
}

}  // namespace urOS
