// The interactive Lua prompt.
#pragma once

#include <string>

#include "foundation/nxRFL/Function.h"
#include "tools/nxhost/LineEditor.h"

namespace nxhost {

class Host;

/// Reads Lua line by line, runs it and prints its results, while the main loop continues.
///
/// Collects lines until they form a whole chunk. Ctrl-C stops the running chunk or drops the typed text; on an empty
/// line it ends the program, as Ctrl-D does.
class Prompt {
public:
    explicit Prompt(Host& host);

    void run();

private:
    /// Returns false at the end of the input.
    bool readChunk();
    /// Returns null if `text` is only the beginning of a chunk. Throws if it is not Lua.
    [[nodiscard]] ur::Reference<nxRFL::Function> compile(std::string const& text) const;
    void evaluate(ur::Reference<nxRFL::Function> const& chunk) const;

    Host& host_;
    ur::Reference<nxRFL::Function> show_;  ///< calls a function and prints its results
    LineEditor editor_;
    ur::Reference<nxRFL::Function> chunk_;  ///< the last chunk read; null before the first
};

}  // namespace nxhost
