// Environment variables that switch features.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"

namespace nxSupport {

/// Each code names the variable NX_ plus its name in capitals. The calling code defines the variable's meaning.
enum EnvVarCode : std::int32_t {
    EnvVar_Debug = 0,                  ///< NX_DEBUG
    EnvVar_Platform = 1,               ///< NX_PLATFORM
    EnvVar_Multitouch = 2,             ///< NX_MULTITOUCH
    EnvVar_WantQtToolbar = 3,          ///< NX_WANT_QT_TOOLBAR
    EnvVar_PacketFileDebug = 4,        ///< NX_PACKETFILE_DEBUG
    EnvVar_NoLogo = 5,                 ///< NX_NO_LOGO
    EnvVar_DontStartMaximized = 6,     ///< NX_DONT_START_MAXIMIZED
    EnvVar_PerfNumMeshes = 7,          ///< NX_PERF_NUM_MESHES
    EnvVar_DefaultTool = 8,            ///< NX_DEFAULT_TOOL
    EnvVar_MouseCameraTransition = 9,  ///< NX_MOUSE_CAMERA_TRANSITION
    EnvVar_UndoLimit = 10,             ///< NX_UNDO_LIMIT
    EnvVar_UndoMemoryLimit = 11,       ///< NX_UNDO_MEMORY_LIMIT
    EnvVar_LuaPath = 12,               ///< NX_LUA_PATH
    EnvVar_Graphics = 13,              ///< NX_GRAPHICS
};

/// The variable's text, read at each call and owned by the environment. Null if it is unset or the code has no
/// variable. Main thread only.
[[nodiscard]] NX_API char const* env(EnvVarCode const& code) noexcept;

}  // namespace nxSupport
