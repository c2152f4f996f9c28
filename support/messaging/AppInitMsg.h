// The message that starts the modules of an application.
#pragma once

#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "plst/Dictionary.h"
#include "support/messaging/Broadcaster.h"

namespace nxSupport {

/// Carries the application's start parameters; the host defines their keys. Subscribers may change them.
class NX_API AppInitMsg : public Broadcaster::Message {
public:
    explicit AppInitMsg(ur::Reference<nxPLST::Dictionary> parameters) noexcept : parameters_(std::move(parameters)) {}

    [[nodiscard]] ur::Reference<nxPLST::Dictionary> parameters() const noexcept { return parameters_; }

private:
    ur::Reference<nxPLST::Dictionary> parameters_;
};

}  // namespace nxSupport
