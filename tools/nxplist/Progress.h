// A line on the terminal that tells how far a long job has come.
#pragma once

#include <cstdint>

namespace nxplist {

/// Shows what is going on for jobs of more than 16 MiB when standard error is a terminal, and wipes it at the end.
class Progress {
public:
    explicit Progress(char const* work);
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress();

    /// `total` is 0 when it is not known.
    void show(std::uint64_t done, std::uint64_t total);

private:
    char const* work_;
    bool terminal_;
    bool shown_ = false;
    std::uint64_t lastShown_ = 0;
};

}  // namespace nxplist
