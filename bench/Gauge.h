// The class that the Lua rows bind in three ways.
#pragma once

namespace bench {

class Gauge {
public:
    double getLevel() const { return level_; }
    void setLevel(double level) { level_ = level; }
    double add(double a, double b) { return level_ += a * b; }

private:
    double level_ = 1;
};

}  // namespace bench
