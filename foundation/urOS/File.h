// A system file as a byte stream.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/urOS/IOStream.h"
#include "foundation/urOS/OpenMode.h"
#include "foundation/urString/IString.h"

namespace urOS {

/// An open file, or none. Unbuffered: use an `OStream` or a buffer of your own.
class NX_API File final : public IOStream {
public:
    enum class Ownership { own, borrowed };

    File() noexcept = default;
    File(File const&) = delete;
    File& operator=(File const&) = delete;
    ~File() override;

    /// Opens the file at `path` and closes the previous one. Errors name the file; errors of later calls do not.
    urUtil::Error open(urString::IString const& path, OpenMode mode);
    /// Uses an open descriptor (0 = standard input, 1 = standard output); `close` leaves a borrowed one open.
    urUtil::Error attach(int descriptor, Ownership ownership);
    [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }
    /// Success when nothing was open.
    urUtil::Error close();
    /// Returns once the written data is on the disk. An error for pipes and terminals.
    urUtil::Error sync();
    /// The system's file descriptor; negative when nothing is open.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

    urUtil::Error read(void* buffer, std::size_t count, std::size_t* done = nullptr) override;
    urUtil::Error write(void const* buffer, std::size_t count, std::size_t* done = nullptr) override;

    /// `position` counts from the start of the file. An error for pipes and terminals.
    urUtil::Error seek(std::uint64_t position);
    urUtil::Error tell(std::uint64_t& position) const;
    urUtil::Error size(std::uint64_t& bytes) const;

private:
    int descriptor_ = -1;
    Ownership ownership_ = Ownership::own;
};

}  // namespace urOS
