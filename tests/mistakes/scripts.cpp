#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxRFL/ExposeFunction.h"

struct Stroke {
    double pressure;
};
struct Layer {
    Stroke stroke;
};
void listMembers(Layer& layer, auto&& visit) { visit("stroke", layer.stroke); }
enum class Wood { oak, ash };
struct Tool : ur::ReferenceCount {
    double size = 1;
    double width();
};
struct Brush : ur::ReferenceCount {
    void draw(int);
    void draw(double);
    Wood wood{};
};
extern nxRFL::ExposeClass<Brush>& brush;
extern nxRFL::ExposeFunction& studio;

// says: addBase takes a public base of the class
auto& exposed = brush.addBase<Tool>();

// says: a member of another class: it belongs to the exposed class or to a base of it
auto& exposed = brush.addProperty("size", &Tool::size);

// says: a member function of another class: it belongs to the exposed class or to a base of it
auto& exposed = brush.addMethod("width", &Tool::width);

// says: a method of a class takes its object first, by reference
auto& exposed = brush.addMethod("size", [](int size) { return size; });

// says: castTheOverloadedFunctionToOneForm | call to deleted member function
auto& exposed = brush.addMethod("draw", &Brush::draw);

// says: castTheOverloadedFunctionToOneForm | call to deleted member function
auto& exposed = brush.addMethod("draw", &Brush::draw, {"width"});

// says: no names of this enumeration's values: add namesOf (foundation/ur/describe.h)
auto& exposed = brush.addProperty("wood", &Brush::wood);

// says: a function with a signature is needed: a generic or overloaded one has several
auto& exposed = studio.add("any", [](auto value) { return value; });

// says: no nxRFL::read(Reader&, T&) for the result of a script function
auto& exposed = studio.add("draw", [](std::function<Stroke()> const& next) { return next().pressure; });

// says: no nxRFL::write(Writer&, T const&) for the default of a parameter
auto& exposed = studio.add("draw", [](double) {}, {{"stroke", Stroke{1}}});

// says: an object is taken by pointer or reference, not by value
auto& exposed = studio.add("draw", [](Stroke stroke) { return stroke.pressure; });

// says: no nxRFL::read(Reader&, T&) for a value of this type: list its members (foundation/ur/describe.h)
auto& exposed = studio.add("draw", [](Layer const& layer) { return layer.stroke.pressure; });

// says: no nxRFL::read(Reader&, T&) for a value of this type: list its members (foundation/ur/describe.h)
auto& exposed = studio.add("draw", [](std::vector<Stroke> const& strokes) { return strokes.size(); });

// says: an object crosses over by pointer or reference; for a value list its members
auto& exposed = studio.add("stroke", [] { return Stroke{1}; });

// says: no nxRFL::write(Writer&, T const&) for a value of this type: list its members (foundation/ur/describe.h)
auto& exposed = studio.add("strokes", [] { return std::vector<Stroke>(3); });

// says: a text is taken as a std::string, std::string_view or urString::CString
auto& exposed = studio.add("show", [](char const* text) { return text != nullptr; });
