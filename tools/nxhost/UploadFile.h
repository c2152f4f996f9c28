// The file that a transfer sends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "foundation/urString/CString.h"

namespace nxhost {

/// A file open for reading that never keeps the main loop waiting, whatever kind of file it is.
///
/// Pipes and terminals have data when somebody writes them: until then a transfer pauses.
class UploadFile {
public:
    /// Throws `Failed` for a file that cannot be opened. Does not wait for somebody to write a pipe.
    explicit UploadFile(urString::CString const& path);
    UploadFile(UploadFile const&) = delete;
    UploadFile& operator=(UploadFile const&) = delete;
    ~UploadFile();

    /// In bytes. Nothing if the size is unknown before the end, as for pipes, devices and files that the system makes
    /// up.
    [[nodiscard]] std::optional<std::int64_t> size() const noexcept { return size_; }
    /// Reading would not wait.
    [[nodiscard]] bool ready() const noexcept;
    /// The last `read` has found nothing yet.
    [[nodiscard]] bool waits() const noexcept { return waits_; }
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }
    /// Why reading has failed; empty when it has not.
    [[nodiscard]] urString::CString errorText() const;

    /// What a read function of libcurl returns: the number of bytes, 0 at the end, or that it pauses or aborts.
    std::size_t read(char* bytes, std::size_t size) noexcept;
    /// From the start of the file. False when the file has no positions.
    bool seek(std::int64_t position) noexcept;

private:
    static constexpr int shortened = -1;

    void findSize();
    std::size_t abort(int failure) noexcept;

    int descriptor_;
    std::optional<std::int64_t> size_;
    std::int64_t position_ = 0;
    bool waits_ = false;
    int failure_ = 0;  ///< of the system, or `shortened`
};

}  // namespace nxhost
