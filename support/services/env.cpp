// The environment variable of each code.
#include "support/services/env.h"

#include <cstdlib>

namespace nxSupport {

namespace {

struct EnvVar {
    EnvVarCode code;
    char const* name;
};

constexpr EnvVar variables[] = {
    {EnvVar_Debug, "NX_DEBUG"},
    {EnvVar_Platform, "NX_PLATFORM"},
    {EnvVar_Multitouch, "NX_MULTITOUCH"},
    {EnvVar_WantQtToolbar, "NX_WANT_QT_TOOLBAR"},
    {EnvVar_PacketFileDebug, "NX_PACKETFILE_DEBUG"},
    {EnvVar_NoLogo, "NX_NO_LOGO"},
    {EnvVar_DontStartMaximized, "NX_DONT_START_MAXIMIZED"},
    {EnvVar_PerfNumMeshes, "NX_PERF_NUM_MESHES"},
    {EnvVar_DefaultTool, "NX_DEFAULT_TOOL"},
    {EnvVar_MouseCameraTransition, "NX_MOUSE_CAMERA_TRANSITION"},
    {EnvVar_UndoLimit, "NX_UNDO_LIMIT"},
    {EnvVar_UndoMemoryLimit, "NX_UNDO_MEMORY_LIMIT"},
    {EnvVar_LuaPath, "NX_LUA_PATH"},
    {EnvVar_Graphics, "NX_GRAPHICS"},
};

}  // namespace

char const* env(EnvVarCode const& code) noexcept {
    for (EnvVar const& variable : variables)
        if (variable.code == code) return std::getenv(variable.name);
    return nullptr;
}

}  // namespace nxSupport
