// A class exposed to scripts, scripts that use it, and the handling of their errors.
#include <cstdio>
#include <functional>
#include <optional>

#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxRFL/ExposeFunction.h"
#include "foundation/nxRFL/listing.h"

using urString::CString;

// [class]
namespace studio {

/// A counted object lives as long as there are references, including those of scripts.
class Brush : public ur::ReferenceCount {
public:
    [[nodiscard]] double getSize() const { return size_; }
    void setSize(double size) { size_ = size; }
    void addStroke(CString const& name, int points) { strokes_[name] = points; }
    [[nodiscard]] ur::map<CString, int> const& strokes() const { return strokes_; }

    std::function<void(Brush&)> changed;

private:
    double size_ = 1;
    ur::map<CString, int> strokes_;
};

}  // namespace studio
// [class]

using studio::Brush;

// [charge]
/// Charges its bytes to the account of the scripts.
class Canvas : public ur::ReferenceCount {
public:
    explicit Canvas(std::size_t bytes) : pixels_(bytes) {}
    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, pixels_.size());
    }

private:
    ur::vector<char> pixels_;
    ur::Charge charge_;
};
// [charge]

// [register]
void registerStudio(nxRFL::Database& database) {
    nxRFL::ExposeClass<Brush>(database, "studio::Brush")
        .addProperty("size", &Brush::getSize, &Brush::setSize)
        .addMethod("addStroke", &Brush::addStroke)
        .addMethod("onChange",
                   [](Brush& brush, std::function<void(Brush&)> const& function) { brush.changed = function; })
        .addMapIterator("strokes", &Brush::strokes)
        .addStaticMethod("make", [] { return ur::make<Brush>(); });
    nxRFL::ExposeFunction(database, "studio").add("area", [](double radius) {
        if (radius < 0) throw nxRFL::Exception("no circle has a negative radius");
        return 3.25 * radius * radius;
    });
}
// [register]

void show(std::optional<nxRFL::Exception> const& error) {
    std::printf("%s\n", error ? error->what() : "fine");
    if (error) std::printf("%s\n", error->trace().c_str());
}

int main() {
    // [run]
    nxRFL::Database database;
    registerStudio(database);
    nxLC::State state(database, nxLC::Library::sandboxed);
    state.setLimits({.instructions = 1'000'000, .memory = 16'000'000});

    nxRFL::Stack results;
    auto const error = state.run(R"(
        brush = studio.Brush.make()
        brush.size = 2.5
        brush:addStroke("outline", 40)
        brush:addStroke("fill", 12)
        local text = ""
        for name, points in brush:strokes() do text = text .. name .. ": " .. points .. "; " end
        brush:onChange(function(b) seen = b.size end)
        return text, brush)",
                                 "@draw.lua", {}, results);
    // [run]
    show(error);

    // [results]
    nxRFL::Reader reader(results);
    std::printf("%s\n", reader.readText().c_str());
    ur::Reference<Brush> brush;
    nxRFL::read(reader, brush);
    brush->changed(*brush);  // calls the script's function
    // [results]
    show(state.run("assert(seen == 2.5)", "=check"));

    // [errors]
    show(state.run("local function draw(b)\n    b:addStroke('dot', 0.5)\nend\ndraw(brush)", "@draw.lua"));
    show(state.run("studio.area(-1)", "=line"));
    show(state.run("while true do end", "=loop"));
    // [errors]

    nxRFL::ExposeClass<Canvas>(database, "studio::Canvas").addStaticMethod("make", [](unsigned bytes) {
        return ur::make<Canvas>(bytes);
    });
    state.reflection().publish();
    show(state.run("studio.Canvas.make(20e6)", "=canvas"));

    CString const text = nxRFL::listing(database, nxRFL::ListingFormat::text);
    std::printf("%s", text.substr(text.find("class studio")).c_str());
}
