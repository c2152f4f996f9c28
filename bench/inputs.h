// The inputs shared by several rows: texts and trees as tools use them.
#pragma once

#include <string>
#include <vector>

#include "plst/Item.h"

namespace bench {

struct Document {
    std::string name;
    std::string text;
};

/// Much text (the ISO 639-3 language list), many numbers (outlines in full precision), many small objects, and deep
/// nesting. `quick` makes the generated ones a tenth as long.
std::vector<Document> const& documents(bool quick);

/// The JSON files in a folder by their names; none for an empty path.
std::vector<Document> documentsIn(std::string const& folder);

/// An array of records of eight nodes each: numbers, texts, booleans, and an array of numbers.
ur::Reference<nxPLST::Item> recordTree(int records);

}  // namespace bench
