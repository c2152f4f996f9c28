// The view of the scene.
#pragma once

#include <QTimer>
#include <QWidget>

#include "examples/scene/Frame.h"
#include "examples/scene/drags.h"
#include "support/services/CursorSlot.h"

namespace scene {

/// Shows the scene and edits it with the mouse.
///
/// Left: selects, boxes, drags handles or brushes. Middle, or Alt and left: orbits. Right: pans. Wheel: zooms.
/// Escape takes back what is being dragged.
class Viewport final : public QWidget {
public:
    enum class Tool { move, rotate, scale, smooth };

    explicit Viewport(Editor& editor, QWidget* parent = nullptr);
    ~Viewport() override;

    void setTool(Tool tool);
    /// Looks at the selection, or at everything.
    void frameSelection();
    /// Draws anew when the program is idle.
    void refresh();
    /// Whether everything that has changed is shown, in full.
    [[nodiscard]] bool isUpToDate() const { return !isDirty_ && !pending_; }
    [[nodiscard]] Frame const* frame() const { return shown_.get(); }
    /// The time of the last complete picture.
    [[nodiscard]] double frameMilliseconds() const { return frameMilliseconds_; }
    [[nodiscard]] Camera& camera() { return camera_; }
    /// The handles of the selection; none without one, and with the brush.
    [[nodiscard]] std::optional<Handles> handles() const;
    [[nodiscard]] bool isDragging() const { return drag_ != nullptr; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class CameraDrag;
    class BoxDrag;

    void drawSlice();
    void lookAt(urLinear::Range3d const& box);
    void drawFloor(QPainter& painter) const;
    void drawHandles(QPainter& painter) const;
    [[nodiscard]] Projection projection() const;
    [[nodiscard]] std::unique_ptr<Drag> dragFor(QMouseEvent const& event);
    [[nodiscard]] std::unique_ptr<Drag> brushAt(QPointF position);
    void showCursor();
    void requestCursor(char const* name);

    Editor& editor_;
    Camera camera_;
    Tool tool_ = Tool::move;
    std::unique_ptr<Drag> drag_;
    Qt::MouseButton button_ = Qt::NoButton;  ///< that began the drag
    QRect box_;                              ///< that is being drawn
    bool isDirty_ = true;
    bool isFramed_ = false;  ///< the camera looks at the scene that was opened
    std::unique_ptr<Frame> shown_;
    std::unique_ptr<Frame> pending_;
    double pendingMilliseconds_ = 0;
    double frameMilliseconds_ = 0;
    QTimer timer_;
    ur::Reference<nxSupport::CursorSlot> slot_;
    ur::Reference<nxSupport::Cursor> cursor_;
    urRTB::SignalClient client_;
};

}  // namespace scene
