// Lua typed at a terminal.
#pragma once

#include <string>

#include "foundation/nxRFL/Function.h"
#include "tools/nxhost/LineEditor.h"

namespace nxhost {

class Host;

/// Reads Lua line by line, runs it and prints what it gives, while the main loop goes on.
///
/// Lines are gathered until they make a whole chunk. Ctrl-C stops what runs or drops what was typed; on an empty line
/// it ends the program, as Ctrl-D does.
class Prompt {
public:
    explicit Prompt(Host& host);

    void run();

private:
    /// False at the end of the input.
    bool readChunk();
    /// Null while `text` is only the beginning of a chunk. Throws when it is no Lua.
    [[nodiscard]] ur::Reference<nxRFL::Function> compile(std::string const& text) const;
    void evaluate(ur::Reference<nxRFL::Function> const& chunk) const;

    Host& host_;
    ur::Reference<nxRFL::Function> show_;  ///< calls a function and prints its results
    LineEditor editor_;
    ur::Reference<nxRFL::Function> chunk_;  ///< the last one read; null when there was none
};

}  // namespace nxhost
