// What a document tells its autosave.
#pragma once

#include <cstddef>

#include "foundation/urString/CString.h"

namespace nxSupport {
class Object;
}

namespace nxSupport::impl {

/// Called after each change, before any listener, who may throw.
class ChangeLog {
public:
    virtual void valueChanged(Object& object, urString::CString const& name) noexcept = 0;
    virtual void inserted(Object& parent, std::size_t index, Object& child) noexcept = 0;
    virtual void removed(Object& parent, std::size_t index) noexcept = 0;
    virtual void moved(Object& parent, std::size_t from, std::size_t to) noexcept = 0;
    /// All may be other than what was told so far.
    virtual void forgetAll() noexcept = 0;
    virtual void documentGone() noexcept = 0;

protected:
    ~ChangeLog() = default;
};

}  // namespace nxSupport::impl
