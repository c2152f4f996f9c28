// Shows the progress of a long job on the terminal.
#pragma once

#include <cstdint>

namespace nxplist {

/// Shows the progress of jobs of more than 16 MiB if standard error is a terminal, and clears the line at the end.
class Progress {
public:
    explicit Progress(char const* work);
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress();

    /// `total` is 0 if it is unknown.
    void show(std::uint64_t done, std::uint64_t total);

private:
    char const* work_;
    bool terminal_;
    bool shown_ = false;
    std::uint64_t lastShown_ = 0;
};

}  // namespace nxplist
