// The topics of diagnostic output.
#pragma once

#include <cstdint>

namespace nxSupport {

/// A topic of diagnostic output. `Debug` switches it on and off.
enum DebugCode : std::int32_t {
    Debug_Fab = 0,
    Debug_SymmetricBrushing = 1,
    Debug_AltDiagonalAlg = 2,
    Debug_DisplaySculptMeshEdges = 3,
    Debug_DisplayMeshVertexNormals = 4,
    Debug_DisplaySculptXsection = 5,
    Debug_DisplaySculptYsection = 6,
    Debug_DisplaySculptZsection = 7,
    Debug_DisplayChartColoring = 8,
    Debug_DisplaySkeletonAffinity = 9,
    Debug_DisplayFabSliceContours = 10,
    Debug_DrawBaseMesh = 11,
    Debug_DrawEdges = 12,
    Debug_DisplayCNetEntity = 13,
    Debug_Skeleton = 14,
    Debug_Tools = 15,
    Debug_Undo = 16,
    Debug_Resources = 17,  ///< also switches the resource cache's own channel
    Debug_Manips = 18,
    Debug_HUD = 19,
    Debug_HUD_Draw = 20,
    Debug_HUD_HitTest = 21,
    Debug_Selection = 22,
    Debug_Snapping = 23,
    Debug_HSTUpdate = 24,
    Debug_History = 25,
    Debug_HistoryNewPrune = 26,
    Debug_HistoryDebugFile = 27,
    Debug_DMA = 28,
    Debug_Tessellate = 29,
    Debug_Symmetry = 30,
    Debug_DMD = 31,
    Debug_HitTest = 32,
    Debug_DrawSelection = 33,
    Debug_Materials = 34,
    Debug_ANM = 35,
    Debug_AsyncTask = 36,
    Debug_CallStack1 = 37,
    Debug_CallStack2 = 38,
    Debug_Events = 39,
    Debug_Cursors = 40,
    Debug_GraphicsDraw = 41,
    Debug_RenCache = 42,
    Debug_RenDraw = 43,
    Debug_RenVBO = 44,
    Debug_Geometry = 45,
    Debug_GLWidget = 46,
    Debug_GL = 47,
    Debug_QTouch = 48,
    NUM_CODES = 49,  ///< the number of codes; not a topic
};

/// An action in a debug menu.
enum DebugAction : std::int32_t {
    DebugAction_CopyToITunes = 0,
    DebugAction_CopyFromITunes = 1,
};

}  // namespace nxSupport
