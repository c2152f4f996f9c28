// Compares our way of doing a task with its alternatives, in one run.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_TOGGLE_COLLECT
#endif

namespace bench {

/// One way of doing the task. `measure` does it once and returns its cost: seconds, or bytes in rows about memory.
struct Side {
    std::string name;
    std::function<double()> measure;
};

/// While true, valgrind counts the instructions in `seconds`: see bench/count.
inline bool isCounting = false;

/// The time that `work` takes, in seconds.
template <class Work>
double seconds(Work&& work) {
    auto const start = std::chrono::steady_clock::now();
    if (isCounting) CALLGRIND_TOGGLE_COLLECT;
    work();
    if (isCounting) CALLGRIND_TOGGLE_COLLECT;
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// A side that calls `work` with every number from 0 to `times` - 1.
template <class Work>
Side repeated(char const* name, int times, Work work) {
    return {name, [=] {
                return seconds([&] {
                    for (int i = 0; i < times; ++i) work(i);
                });
            }};
}

/// Our side first, then the others.
using Sides = std::vector<Side>;

/// One line of the result: the median of our side and that of the best other side.
struct Row {
    std::string name;
    double ours;
    double peer;
    std::string peerName;
    double ratio;
    double target;
    double spread;  // of our side: (90th - 10th percentile) / median
    bool ok;
};

enum class Unit { seconds, bytes };

/// Runs rows as they are added and keeps their results. The sides of a row alternate, so that changes of the machine's
/// speed affect all of them.
class Suite {
public:
    struct Options {
        bool quick = false;    // smaller inputs and fewer repetitions
        std::string filter;    // only rows whose names contain it
        std::string jsonFile;  // the file for `writeJson`; empty for none
        std::string folder;    // of further JSON files to read, write and copy; empty for none
        bool large = false;    // growth to ten times the usual number, which takes gigabytes and minutes
        bool list = false;     // only prints the names and targets of the rows
        int side = -1;         // measures only this side of the row named by `filter`, once, for bench/count
    };

    explicit Suite(Options options) : options_(std::move(options)) {}

    /// Compares one row. `prepare` creates the sides and their inputs, only if the row is to run. `target` is the
    /// largest acceptable ratio of our cost to that of the best other side.
    void compare(std::string const& name, double target, std::function<Sides()> const& prepare,
                 Unit unit = Unit::seconds);

    /// Adds rows `growth/SUBJECT/N` for N = 10, 100 and 1000 times `least`. Each compares the seconds of `work` for N
    /// with ten times those for N / 10, and allows growth by n log n. A quick run leaves out the last row, a large one
    /// adds 10,000 times `least`.
    void compareGrowth(std::string const& subject, std::size_t least, std::function<double(std::size_t)> const& work);

    [[nodiscard]] bool quick() const { return options_.quick; }
    [[nodiscard]] std::string const& folder() const { return options_.folder; }
    /// `full`, or a tenth of it in a quick run.
    [[nodiscard]] int scaled(int full) const { return options_.quick ? (full + 9) / 10 : full; }

    /// Whether no row has run, because no name contains the filter's text.
    [[nodiscard]] bool empty() const { return isEmpty_; }
    [[nodiscard]] bool allMet() const;
    /// False if the file could not be written.
    [[nodiscard]] bool writeJson() const;

private:
    void countSide(std::string const& name, Sides const& sides);

    Options options_;
    bool isEmpty_ = true;
    std::vector<Row> rows_;
};

/// Keeps the compiler from removing a result that is not read.
template <class T>
void keep(T const& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace bench
