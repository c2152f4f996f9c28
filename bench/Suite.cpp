// Measures medians of interleaved runs, prints and stores them.
#include "bench/Suite.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

namespace bench {
namespace {

/// The value below which `fraction` of the sorted samples lie.
double percentile(std::vector<double> const& sorted, double fraction) {
    return sorted[static_cast<std::size_t>(fraction * static_cast<double>(sorted.size() - 1) + 0.5)];
}

struct Measured {
    double median;
    double spread;
};

Measured summary(std::vector<double> samples) {
    std::sort(samples.begin(), samples.end());
    double const median = percentile(samples, 0.5);
    double const range = percentile(samples, 0.9) - percentile(samples, 0.1);
    return {median, median > 0 ? range / median : 0};
}

/// As many repetitions as fit the time for a row, between 3 and 100.
int repetitionsFor(double secondsPerTurn, bool quick) {
    double const budget = quick ? 0.6 : 3.0;
    return static_cast<int>(std::clamp(budget / std::max(secondsPerTurn, 1e-6), 3.0, 100.0));
}

std::vector<Measured> interleaved(Sides const& sides, bool quick, Unit unit) {
    std::vector<std::vector<double>> samples(sides.size());
    double const warmUp = seconds([&] {
        for (Side const& side : sides) side.measure();
    });
    int const repetitions = unit == Unit::bytes ? 1 : repetitionsFor(warmUp, quick);
    for (int turn = 0; turn < repetitions; ++turn) {
        for (std::size_t i = 0; i < sides.size(); ++i) samples[i].push_back(sides[i].measure());
    }
    std::vector<Measured> result;
    for (auto& one : samples) result.push_back(summary(std::move(one)));
    return result;
}

std::string readable(double cost, Unit unit) {
    char text[32];
    if (unit == Unit::bytes) {
        std::snprintf(text, sizeof text, "%.1f B", cost);
    } else if (cost >= 1e-3) {
        std::snprintf(text, sizeof text, "%.2f ms", cost * 1e3);
    } else if (cost >= 1e-6) {
        std::snprintf(text, sizeof text, "%.2f us", cost * 1e6);
    } else {
        std::snprintf(text, sizeof text, "%.2f ns", cost * 1e9);
    }
    return text;
}

void print(Row const& row, Unit unit) {
    std::printf("%-34s ours %11s +-%2.0f%%   best peer %11s (%s)   %.2f   target %.2f   %s\n", row.name.c_str(),
                readable(row.ours, unit).c_str(), row.spread * 50, readable(row.peer, unit).c_str(),
                row.peerName.c_str(), row.ratio, row.target, row.ok ? "ok" : "missed");
    std::fflush(stdout);
}

}  // namespace

void Suite::compare(std::string const& name, double target, std::function<Sides()> const& prepare, Unit unit) {
    if (options_.side >= 0 ? name != options_.filter : name.find(options_.filter) == std::string::npos) return;
    isEmpty_ = false;
    if (options_.list) return static_cast<void>(std::printf("%s\t%g\n", name.c_str(), target));
    Sides const sides = prepare();
    if (options_.side >= 0) return countSide(name, sides);
    std::vector<Measured> const costs = interleaved(sides, options_.quick, unit);
    std::size_t best = 1;
    for (std::size_t i = 2; i < sides.size(); ++i) {
        if (costs[i].median < costs[best].median) best = i;
    }
    double const ratio = costs[0].median / costs[best].median;
    rows_.push_back(
        {name, costs[0].median, costs[best].median, sides[best].name, ratio, target, costs[0].spread, ratio <= target});
    print(rows_.back(), unit);
}

void Suite::compareGrowth(std::string const& subject, std::size_t least,
                          std::function<double(std::size_t)> const& work) {
    constexpr double steepest = 2.0;  // a larger working set no longer fits the processor's caches
    std::size_t const most = (quick() ? 100 : options_.large ? 10000 : 1000) * least;
    for (std::size_t n = 10 * least; n <= most; n *= 10) {
        double const count = static_cast<double>(n);
        double const factor = 10 * std::log2(count) / std::log2(count / 10);
        compare("growth/" + subject + "/" + std::to_string(n), steepest, [=] {
            return Sides{{subject, [=] { return work(n); }}, {"n log n", [=] { return factor * work(n / 10); }}};
        });
    }
}

/// The first run brings caches and pools into the state that they keep.
void Suite::countSide(std::string const& name, Sides const& sides) {
    auto const side = static_cast<std::size_t>(options_.side);
    if (side >= sides.size()) return;
    sides[side].measure();
    isCounting = true;
    sides[side].measure();
    isCounting = false;
    std::printf("%s\t%s\n", name.c_str(), sides[side].name.c_str());
}

bool Suite::allMet() const {
    return std::all_of(rows_.begin(), rows_.end(), [](Row const& row) { return row.ok; });
}

bool Suite::writeJson() const {
    if (options_.jsonFile.empty()) return true;
    std::ofstream out(options_.jsonFile);
    char const* separator = "[\n";
    for (Row const& row : rows_) {
        out << separator << R"(  {"name": ")" << row.name << R"(", "ours": )" << row.ours << R"(, "peer": )" << row.peer
            << R"(, "peer_name": ")" << row.peerName << R"(", "ratio": )" << row.ratio << R"(, "target": )"
            << row.target << R"(, "ok": )" << (row.ok ? "true" : "false") << "}";
        separator = ",\n";
    }
    out << (rows_.empty() ? "[]\n" : "\n]\n");
    return static_cast<bool>(out.flush());
}

}  // namespace bench
