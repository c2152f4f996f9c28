// The inputs that rows share: texts and trees of the shapes that tools meet.
#pragma once

#include <string>
#include <vector>

#include "plst/Item.h"

namespace bench {

struct Document {
    std::string name;
    std::string text;
};

/// Text-heavy (the ISO 639-3 language list), number-heavy (outlines in full precision), many small objects, and
/// deeply nested. `quick` makes the generated ones a tenth as long.
std::vector<Document> const& documents(bool quick);

/// An array of records of eight nodes each: numbers, texts, truth values, and an array of numbers.
ur::Reference<nxPLST::Item> recordTree(int records);

}  // namespace bench
