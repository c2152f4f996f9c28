// The message on which modules register their classes for scripts.
#pragma once

#include "foundation/ur/Export.h"
#include "support/messaging/Broadcaster.h"

namespace nxRFL {
class Database;
}

namespace nxSupport {

/// Carries the reflection database, which it does not own.
class NX_API InitializeReflectionMsg : public Broadcaster::Message {
public:
    explicit InitializeReflectionMsg(nxRFL::Database* database) noexcept : database_(database) {}

    [[nodiscard]] nxRFL::Database* getDB() const noexcept { return database_; }

private:
    nxRFL::Database* database_;
};

}  // namespace nxSupport
