#include "plst/make.h"

struct Stroke {
    double pressure;
};
struct Made {
    explicit Made(double given) : pressure(given) {}
    double pressure;
};
struct Line {
    std::pair<int, int> from;
};
enum class Wood { oak, ash };
using Item = ur::Reference<nxPLST::Item>;

// says: no item shape of this type: include plst/convert.h or plst/containers.h
Stroke first(ur::Reference<nxPLST::Dictionary> const& brush) { return nxPLST::get<Stroke>(brush, "stroke"); }

// says: no conversion of this type to an item: include plst/convert.h or plst/containers.h
auto const item = nxPLST::itemOf(Stroke{1});

// says: no conversion of this type to an item: include plst/convert.h or plst/containers.h
auto const brush = nxPLST::dictionary({{"size", 1}, {"stroke", Stroke{1}}});

// says: no names of this enumeration's values: include plst/containers.h and add namesOf
auto const item = nxPLST::itemOf(Wood::oak);

// says: listMembers takes its structure as S&, not S const&
void listMembers(Stroke const& stroke, auto&& visit) { visit("pressure", stroke.pressure); }
Stroke first(Item const& item) { return nxPLST::valueOf<Stroke>(item); }

// says: listMembers calls visit(name, member)
void listMembers(Stroke& stroke, auto&& visit) { visit(stroke.pressure); }
auto const item = nxPLST::itemOf(Stroke{1});

// says: a structure that lists its members has a default constructor
void listMembers(Made& made, auto&& visit) { visit("pressure", made.pressure); }
Made first(Item const& item) { return nxPLST::valueOf<Made>(item, Made(1)); }

// says: a value without a default constructor is read with a fallback | lists its members has a default constructor
void listMembers(Made& made, auto&& visit) { visit("pressure", made.pressure); }
Made first(Item const& item) { return nxPLST::valueOf<Made>(item); }

// says: no item shape of a listed member: include plst/convert.h or plst/containers.h
void listMembers(Line& line, auto&& visit) { visit("from", line.from); }
Line first(Item const& item) { return nxPLST::valueOf<Line>(item); }
