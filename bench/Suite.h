// Comparing our way of doing a piece of work with what a user would pick instead, in one run.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

/// One way of doing the work. `measure` does it once and gives its cost: seconds, or bytes for rows of memory.
struct Side {
    std::string name;
    std::function<double()> measure;
};

/// How long `work` takes, in seconds.
template <class Work>
double seconds(Work&& work) {
    auto const start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// A side that calls `work` with every number from 0 up to `times`.
template <class Work>
Side repeated(char const* name, int times, Work work) {
    return {name, [=] {
                return seconds([&] {
                    for (int i = 0; i < times; ++i) work(i);
                });
            }};
}

/// Our way first, then the peers'.
using Sides = std::vector<Side>;

/// One line of the result: the medians of both sides, our own against the best peer's.
struct Row {
    std::string name;
    double ours;
    double peer;
    std::string peerName;
    double ratio;
    double target;
    double spread;  // of ours: (90th - 10th percentile) / median
    bool ok;
};

enum class Unit { seconds, bytes };

/// Runs rows as they are added and keeps their results. The sides of a row take turns, so that a machine whose
/// speed drifts treats them alike.
class Suite {
public:
    struct Options {
        bool quick = false;    // smaller inputs and fewer repetitions
        std::string filter;    // only rows whose names contain it
        std::string jsonFile;  // where `writeJson` puts the results; empty: nowhere
    };

    explicit Suite(Options options) : options_(std::move(options)) {}

    /// Compares one row. `prepare` makes the sides, and with them the inputs, only when the row is to run; `target`
    /// is the largest good ratio of ours to the best peer's.
    void compare(std::string const& name, double target, std::function<Sides()> const& prepare,
                 Unit unit = Unit::seconds);

    /// Rows `growth/SUBJECT/N`, N being ten, a hundred and a thousand times `least`: the seconds of `work` for N
    /// beside those for a tenth of N, ten times, with n log n allowed. A quick run leaves the last out.
    void compareGrowth(std::string const& subject, std::size_t least, std::function<double(std::size_t)> const& work);

    [[nodiscard]] bool quick() const { return options_.quick; }
    /// `full` work, or a tenth of it in a quick run.
    [[nodiscard]] int scaled(int full) const { return options_.quick ? (full + 9) / 10 : full; }

    /// Whether no row has run: none has the filter's text in its name.
    [[nodiscard]] bool empty() const { return rows_.empty(); }
    [[nodiscard]] bool allMet() const;
    /// False when the file could not be written.
    [[nodiscard]] bool writeJson() const;

private:
    Options options_;
    std::vector<Row> rows_;
};

/// Keeps the compiler from dropping a result that nobody reads.
template <class T>
void keep(T const& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace bench
