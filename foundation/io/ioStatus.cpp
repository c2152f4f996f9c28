// Texts for the states of packet contexts.
#include "foundation/io/ioStatus.h"

#include <array>

char const* ioStatusText(int status) noexcept {
    static constexpr std::array texts{
        "ok",
        "the stream failed",
        "no packet context could be made",
        "not a packet file",
        "a packet file of an unknown version",
        "the file ends too early",
        "malformed packet data",
        "a reference to an object that is not complete",
        "a packet type that is not registered",
        "packets nested too deeply",
        "an object inside itself",
        "packet calls out of order",
    };
    bool const known = status >= 0 && status < static_cast<int>(texts.size());
    return known ? texts[static_cast<unsigned>(status)] : "an unknown status";
}
