// The table of debug codes, and their switches.
#include "support/services/Debug.h"

#include <algorithm>
#include <array>

#include "foundation/nxTXN/debugChannel.h"
#include "foundation/urOS/AppOutput.h"
#include "krcache/debugChannel.h"

namespace nxSupport {
namespace {

struct Row {
    char const* name;
    char const* description;
};

constexpr std::array<Row, NUM_CODES + 1> rows = {{
    {"Debug_Fab", "Fabrication"},
    {"Debug_SymmetricBrushing", "SymmetricBrushing"},
    {"Debug_AltDiagonalAlg", "Alt Diagonal Alg"},
    {"Debug_DisplaySculptMeshEdges", "Draw Sculpt Mesh Edges"},
    {"Debug_DisplayMeshVertexNormals", "Draw Mesh Vertex Normals"},
    {"Debug_DisplaySculptXsection", "Draw X section Box center"},
    {"Debug_DisplaySculptYsection", "Draw Y section Box center"},
    {"Debug_DisplaySculptZsection", "Draw Z section Box center"},
    {"Debug_DisplayChartColoring", "Draw Sculpt Chart Coloring"},
    {"Debug_DisplaySkeletonAffinity", "Draw Skeleton Affinity"},
    {"Debug_DisplayFabSliceContours", "Draw Fab Slice Contours"},
    {"Debug_DrawBaseMesh", "Draw subdiv"},
    {"Debug_DrawEdges", "Draw TopoMesh edges"},
    {"Debug_DisplayCNetEntity", "Draw debug cnet info"},
    {"Debug_Skeleton", "Skeleton"},
    {"Debug_Tools", "Tools"},
    {"Debug_Undo", "Undo"},
    {"Debug_Resources", "Resources"},
    {"Debug_Manips", "Manips"},
    {"Debug_HUD", "HUD"},
    {"Debug_HUD_Draw", "HUD Draw"},
    {"Debug_HUD_HitTest", "HUD HitTest"},
    {"Debug_Selection", "Selection"},
    {"Debug_Snapping", "Snapping"},
    {"Debug_HSTUpdate", "HistoryUpdate"},
    {"Debug_History", "History"},
    {"Debug_HistoryNewPrune", "History New Prune Algorithm"},
    {"Debug_HistoryDebugFile", "History Debug File"},
    {"Debug_DMA", "DataModelAlg"},
    {"Debug_Tessellate", "Tessellation"},
    {"Debug_Symmetry", "Symmetry"},
    {"Debug_DMD", "DataModelDefn"},
    {"Debug_HitTest", "HitTest"},
    {"Debug_DrawSelection", "DrawSelection"},
    {"Debug_Materials", "Materials"},
    {"Debug_ANM", "Animation"},
    {"Debug_AsyncTask", "AsyncTask"},
    {"Debug_CallStack1", "CallStack1"},
    {"Debug_CallStack2", "CallStack2"},
    {"Debug_Events", "Events"},
    {"Debug_Cursors", "Cursors"},
    {"Debug_GraphicsDraw", "Graphics Draw"},
    {"Debug_RenCache", "RenCache"},
    {"Debug_RenDraw", "RenDraw"},
    {"Debug_RenVBO", "RenVBO"},
    {"Debug_Geometry", "Geometry"},
    {"Debug_GLWidget", "GLWidget"},
    {"Debug_GL", "GL"},
    {"Debug_QTouch", "QTouch"},
    {"NUM_CODES", ""},
}};

constexpr std::array<char const*, 2> actionDescriptions = {"Copy To iTunes", "Copy From iTunes"};

constexpr char const* unknown = "~ unknown ~";

/// Null for a value without a row.
Row const* rowOf(DebugCode code) noexcept {
    auto const index = static_cast<std::uint32_t>(code);
    return index < rows.size() ? &rows[index] : nullptr;
}

}  // namespace

Debug& Debug::getInstance() {
    static Debug instance;
    return instance;
}

Debug::Debug() : channels_(NUM_CODES), ownChannels_(NUM_CODES) {
    for (int i = 0; i < NUM_CODES; ++i) codes_[rows[i].name] = static_cast<DebugCode>(i);
    std::transform(ownChannels_.begin(), ownChannels_.end(), channels_.begin(), [](auto& own) { return &own; });
    // If opening fails, the application output drops text, now and later.
    static_cast<void>(urOS::AppOutput::getInstance().open(urString::IString("-"), false));
}

void Debug::enable(DebugCode code) { set(code, true); }
void Debug::disable(DebugCode code) { set(code, false); }
void Debug::toggle(DebugCode code) { set(code, !isEnabled(code)); }

void Debug::set(DebugCode code, bool enabled) {
    if (!isCode(code)) return;
    channels_[code]->setEnabled(enabled);
    if (code == Debug_Resources) urKRCache::debugChannel().setEnabled(enabled);
    if (code == Debug_Undo) nxTXN::debugChannel().setEnabled(enabled);
    codeChanged.emit(code);
}

void Debug::provideChannel(DebugCode code, urOS::DebugChannel& channel) noexcept {
    if (isCode(code)) channels_[code] = &channel;
    if (code == Debug_Undo) nxTXN::setDebugChannel(&channel);
}

urString::CString Debug::describe(DebugCode code) {
    Row const* const row = rowOf(code);
    return row ? row->description : unknown;
}

urString::CString Debug::getCodeName(DebugCode code) {
    Row const* const row = rowOf(code);
    return row ? row->name : "";
}

DebugCode Debug::findCodeByName(urString::CString const& name) const {
    auto const place = codes_.find(name);
    return place == codes_.end() ? NUM_CODES : place->second;
}

urString::CString Debug::getActionDescription(DebugAction action) {
    auto const index = static_cast<std::uint32_t>(action);
    return index < actionDescriptions.size() ? actionDescriptions[index] : unknown;
}

void Debug::print_(DebugCode code, char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vprint(code, false, format, arguments);
    va_end(arguments);
}

void Debug::vprint(DebugCode code, bool newline, char const* format, va_list arguments) {
    if (!isEnabled(code)) return;
    urString::CString line(static_cast<std::size_t>(std::max(indent_, 0)), ' ');
    line += urString::CString::vformat(format, arguments).view();
    if (newline) line += '\n';
    channels_[code]->print("%s", line.c_str());
}

}  // namespace nxSupport
