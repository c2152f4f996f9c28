// A file of the system as a byte stream.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/urOS/IOStream.h"
#include "foundation/urOS/OpenMode.h"
#include "foundation/urString/IString.h"

namespace urOS {

/// An open file, or none. Nothing is buffered: put an `OStream` or a buffer of your own in front.
class NX_API File final : public IOStream {
public:
    enum class Ownership { own, borrowed };

    File() noexcept = default;
    File(File const&) = delete;
    File& operator=(File const&) = delete;
    ~File() override;

    /// Opens the file at `path`, in place of the one that was open. Errors name the file; those of what follows do not.
    urUtil::Error open(urString::IString const& path, OpenMode mode);
    /// Uses an open descriptor (0 = standard input, 1 = standard output); `close` leaves a borrowed one open.
    urUtil::Error attach(int descriptor, Ownership ownership);
    [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }
    /// Success when nothing was open.
    urUtil::Error close();
    /// Returns once what was written is on the disk. Pipes and terminals have none: an error.
    urUtil::Error sync();
    /// As the system numbers open files; negative when nothing is open.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

    urUtil::Error read(void* buffer, std::size_t count, std::size_t* done = nullptr) override;
    urUtil::Error write(void const* buffer, std::size_t count, std::size_t* done = nullptr) override;

    /// From the start of the file. Pipes and terminals have no positions: an error.
    urUtil::Error seek(std::uint64_t position);
    urUtil::Error tell(std::uint64_t& position) const;
    urUtil::Error size(std::uint64_t& bytes) const;

private:
    int descriptor_ = -1;
    Ownership ownership_ = Ownership::own;
};

}  // namespace urOS
