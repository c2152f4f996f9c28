// A parser of lines, and the three formats.
#include "examples/scene/meshFiles.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

namespace scene {
namespace {

using urGeom::CompactMesh;
using urLinear::Point;
using urLinear::PointFlt;

constexpr std::size_t mostTriangles = 50'000'000;  // some two gigabytes
constexpr std::size_t longestLine = std::size_t(1) << 20;

struct Cancelled {};

/// The bytes of a file, with its place for messages and its progress.
class Source {
public:
    Source(std::filesystem::path const& path, ReadProgress const& progress)
        : path_(path), progress_(progress), file_(path, std::ios::binary) {
        if (!file_ || std::filesystem::is_directory(path)) throw std::runtime_error(path.string() + ": cannot be read");
        size_ = std::filesystem::file_size(path);
    }

    [[nodiscard]] std::uintmax_t size() const { return size_; }
    [[noreturn]] void fail(std::string const& what) const {
        auto const place = line_ > 0 ? "line " + std::to_string(line_) + ": " : std::string();
        throw std::runtime_error(path_.filename().string() + ": " + place + what);
    }
    /// False at the end. The text is valid until the next call.
    bool line(std::string_view& text) {
        if (++line_ % 65536 == 1) report();
        auto const end = buffer_.find('\n', at_);
        if (end == std::string::npos && fill()) return --line_, line(text);
        if (at_ == buffer_.size()) return --line_, false;
        text = std::string_view(buffer_).substr(at_, end == std::string::npos ? end : end - at_);
        if (text.ends_with('\r')) text.remove_suffix(1);
        at_ = end == std::string::npos ? buffer_.size() : end + 1;
        return true;
    }
    void bytes(void* to, std::size_t count) {
        if (!file_.read(static_cast<char*>(to), static_cast<std::streamsize>(count))) fail("ends too early");
        read_ += count;
    }
    void report() const {
        if (progress_ && !progress_(static_cast<double>(read_) / static_cast<double>(size_ + 1))) throw Cancelled();
    }
    void rewind() {
        file_.clear();
        file_.seekg(0);
        read_ = 0;
    }

private:
    /// Whether more bytes came.
    bool fill() {
        buffer_.erase(0, at_);
        at_ = 0;
        if (buffer_.size() > longestLine) fail("is longer than a mebibyte");
        std::size_t const kept = buffer_.size();
        buffer_.resize(kept + (std::size_t(1) << 18));
        file_.read(buffer_.data() + kept, static_cast<std::streamsize>(buffer_.size() - kept));
        auto const got = static_cast<std::size_t>(file_.gcount());
        buffer_.resize(kept + got);
        read_ += got;
        return got > 0;
    }

    std::filesystem::path path_;
    ReadProgress const& progress_;
    std::ifstream file_;
    std::uintmax_t size_ = 0;
    std::uintmax_t read_ = 0;
    std::size_t line_ = 0;
    std::string buffer_;
    std::size_t at_ = 0;
};

/// The words of a line.
class Words {
public:
    Words(Source const& source, std::string_view line) : source_(source), rest_(line) {}

    /// Empty at the end.
    std::string_view next() {
        auto const begin = rest_.find_first_not_of(" \t");
        if (begin == std::string_view::npos) return rest_ = {};
        rest_.remove_prefix(begin);
        auto const word = rest_.substr(0, rest_.find_first_of(" \t"));
        rest_.remove_prefix(word.size());
        return word;
    }
    template <class Number>
    Number number(std::string_view word, char const* what) const {
        Number value{};
        auto const [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (word.empty() || error != std::errc() || end != word.data() + word.size()) {
            source_.fail(std::string("expected ") + what + ", found \"" + std::string(word.substr(0, 40)) + '"');
        }
        return value;
    }
    double coordinate() {
        auto const value = number<double>(next(), "a coordinate");
        if (!std::isfinite(value) || std::abs(value) > 1e18) source_.fail("a coordinate is too large");
        return value;
    }
    Point point() {
        double const x = coordinate();
        double const y = coordinate();
        return {x, y, coordinate()};
    }

private:
    Source const& source_;
    std::string_view rest_;
};

/// Adds polygons to a mesh as fans of triangles.
class Builder {
public:
    explicit Builder(Source const& source) : source_(source) {}

    CompactMesh& mesh() { return *mesh_; }
    void addPolygon(std::vector<std::uint32_t> const& corners) {
        if (corners.size() < 3) source_.fail("a face has fewer than three corners");
        for (std::uint32_t const corner : corners) {
            if (corner >= mesh_->vertexCount()) source_.fail("a face names a vertex that does not exist");
        }
        for (std::size_t i = 2; i < corners.size(); ++i) mesh_->addTriangle({corners[0], corners[i - 1], corners[i]});
        if (mesh_->triangleCount() > mostTriangles) source_.fail("has more than 50 million triangles");
    }
    Mesh take() { return std::move(mesh_); }

private:
    Source const& source_;
    std::shared_ptr<CompactMesh> mesh_ = std::make_shared<CompactMesh>();
};

/// Corners are numbers of vertices from 1 on, or from the last one back; what follows a slash is skipped.
void readObj(Source& source, Builder& builder) {
    std::vector<std::uint32_t> corners;
    for (std::string_view line; source.line(line);) {
        Words words(source, line);
        auto const kind = words.next();
        if (kind == "v") builder.mesh().addVertex(words.point());
        if (kind != "f") continue;
        corners.clear();
        for (auto word = words.next(); !word.empty(); word = words.next()) {
            auto const number = words.number<std::int64_t>(word.substr(0, word.find('/')), "the number of a vertex");
            auto const place = number < 0 ? number + builder.mesh().vertexCount() : number - 1;
            corners.push_back(place < 0 || place > 0xFFFFFFFE ? 0xFFFFFFFF : static_cast<std::uint32_t>(place));
        }
        builder.addPolygon(corners);
    }
}

/// A line that is neither empty nor a comment; empty at the end.
std::string_view contentLine(Source& source) {
    for (std::string_view line; source.line(line);) {
        line = line.substr(0, line.find('#'));
        if (line.find_first_not_of(" \t") != std::string_view::npos) return line;
    }
    return {};
}

void readOff(Source& source, Builder& builder) {
    if (Words(source, contentLine(source)).next() != "OFF") source.fail("does not begin with OFF");
    Words counts(source, contentLine(source));
    auto vertices = counts.number<std::uint32_t>(counts.next(), "the number of vertices");
    auto faces = counts.number<std::uint32_t>(counts.next(), "the number of faces");
    for (; vertices > 0; --vertices) builder.mesh().addVertex(Words(source, contentLine(source)).point());
    std::vector<std::uint32_t> corners;
    for (; faces > 0; --faces) {
        Words words(source, contentLine(source));
        auto count = words.number<std::uint32_t>(words.next(), "the number of corners");
        corners.clear();
        for (; count > 0; --count) {
            corners.push_back(words.number<std::uint32_t>(words.next(), "the number of a vertex"));
        }
        builder.addPolygon(corners);
    }
}

struct PointHash {
    std::size_t operator()(PointFlt const& p) const {
        std::size_t hash = 0;
        for (int i = 0; i < 3; ++i) hash = hash * 0x9E3779B97F4A7C15U + std::bit_cast<std::uint32_t>(p[i] + 0.0F);
        return hash ^ hash >> 29U;
    }
};

/// STL repeats the corners of each triangle; equal ones become one vertex.
class Corners {
public:
    explicit Corners(Builder& builder) : builder_(builder) {}

    void add(PointFlt const& point) {
        auto const [found, isNew] = numbers_.try_emplace(point, builder_.mesh().vertexCount());
        if (isNew) builder_.mesh().addVertex(Point(point));
        corners_.push_back(found->second);
        if (corners_.size() < 3) return;
        builder_.addPolygon(corners_);
        corners_.clear();
    }

private:
    Builder& builder_;
    std::unordered_map<PointFlt, std::uint32_t, PointHash> numbers_;
    std::vector<std::uint32_t> corners_;
};

constexpr std::size_t stlHead = 84, stlTriangle = 50;

void readBinaryStl(Source& source, Builder& builder, std::uint32_t count) {
    Corners corners(builder);
    std::array<char, stlHead> head{};
    source.bytes(head.data(), head.size());
    for (std::uint32_t i = 0; i < count; ++i) {
        if (i % 65536 == 0) source.report();
        std::array<char, stlTriangle> bytes{};
        source.bytes(bytes.data(), bytes.size());
        std::array<PointFlt, 4> points;  // the normal comes first
        std::memcpy(points.data(), bytes.data(), sizeof points);
        for (std::size_t k = 1; k < points.size(); ++k) {
            for (int axis = 0; axis < 3; ++axis) {
                if (!std::isfinite(points[k][axis])) source.fail("has a coordinate that is no number");
            }
            corners.add(points[k]);
        }
    }
}

void readTextStl(Source& source, Builder& builder) {
    Corners corners(builder);
    std::string_view line;
    if (!source.line(line) || Words(source, line).next() != "solid") source.fail("is no STL");
    while (source.line(line)) {
        Words words(source, line);
        if (words.next() == "vertex") corners.add(PointFlt(words.point()));
    }
}

/// A binary file has just the size that its count of triangles gives.
void readStl(Source& source, Builder& builder) {
    if (source.size() >= stlHead) {
        std::array<char, stlHead> head{};
        source.bytes(head.data(), head.size());
        source.rewind();
        std::uint32_t count = 0;
        std::memcpy(&count, head.data() + stlHead - sizeof count, sizeof count);
        if (source.size() == stlHead + std::uintmax_t(count) * stlTriangle)
            return readBinaryStl(source, builder, count);
    }
    readTextStl(source, builder);
}

}  // namespace

Mesh readMesh(std::filesystem::path const& path, ReadProgress const& progress) {
    std::string kind = path.extension().string();
    for (char& letter : kind)
        letter = static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter + ('a' - 'A') : letter);
    Source source(path, progress);
    Builder builder(source);
    try {
        if (kind == ".obj") {
            readObj(source, builder);
        } else if (kind == ".off") {
            readOff(source, builder);
        } else if (kind == ".stl") {
            readStl(source, builder);
        } else {
            source.fail("is neither OBJ nor OFF nor STL");
        }
    } catch (Cancelled const&) {
        return nullptr;
    }
    if (builder.mesh().triangleCount() == 0) throw std::runtime_error(path.filename().string() + ": has no triangles");
    return builder.take();
}

}  // namespace scene
