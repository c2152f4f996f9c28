// Described types for tests of all value formats.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/ur/describe.h"

namespace ur::test {

enum class Wood { oak, ash, unnamed };
constexpr auto namesOf(Wood* /*type*/) { return std::array{std::pair(Wood::oak, "oak"), std::pair(Wood::ash, "ash")}; }

struct Chair {
    std::string name = "chair";
    Wood wood = Wood::oak;
    std::optional<double> height;
    std::vector<int> marks;

    bool operator==(Chair const&) const = default;
};
template <class Visit>
void listMembers(Chair& chair, Visit&& visit) {
    visit("name", chair.name);
    visit("wood", chair.wood);
    visit("height", chair.height);
    visit("marks", chair.marks);
}

}  // namespace ur::test
