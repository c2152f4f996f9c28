// The file that a transfer uploads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "foundation/urString/CString.h"

namespace nxhost {

/// A file open for reading that never makes the main loop wait, whatever kind of file it is.
///
/// Pipes and terminals have data only after another program writes; until then the transfer pauses.
class UploadFile {
public:
    /// Throws `Failed` if the file cannot be opened. Does not wait for a writer of a pipe.
    explicit UploadFile(urString::CString const& path);
    UploadFile(UploadFile const&) = delete;
    UploadFile& operator=(UploadFile const&) = delete;
    ~UploadFile();

    /// In bytes. Empty if the size is unknown before the end, as for pipes, devices and generated files.
    [[nodiscard]] std::optional<std::int64_t> size() const noexcept { return size_; }
    /// Whether reading would return at once.
    [[nodiscard]] bool ready() const noexcept;
    /// Whether the last `read` found no data yet.
    [[nodiscard]] bool waits() const noexcept { return waits_; }
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }
    /// The reason of a read error; empty if there was none.
    [[nodiscard]] urString::CString errorText() const;

    /// The result of a libcurl read function: the number of bytes, 0 at the end, or the code for pause or abort.
    std::size_t read(char* bytes, std::size_t size) noexcept;
    /// Moves to a position from the start of the file. False if the file cannot seek.
    bool seek(std::int64_t position) noexcept;

private:
    static constexpr int shortened = -1;

    void findSize();
    std::size_t abort(int failure) noexcept;

    int descriptor_;
    std::optional<std::int64_t> size_;
    std::int64_t position_ = 0;
    bool waits_ = false;
    int failure_ = 0;  ///< an error number of the system, or `shortened`
};

}  // namespace nxhost
