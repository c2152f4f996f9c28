// Drawing in slices, and the mouse.
#include "examples/scene/Viewport.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "support/services/Cursor.h"
#include "support/services/PerfScope.h"

namespace scene {

using nxSupport::Object;
using urLinear::Point;
using Clock = std::chrono::steady_clock;
using Modifiers = Qt::KeyboardModifiers;

namespace {

constexpr auto sliceTime = std::chrono::milliseconds(25);
constexpr double brushPixels = 30;

}  // namespace

/// Orbits or pans.
class Viewport::CameraDrag final : public Drag {
public:
    CameraDrag(Viewport& view, bool orbits, QPointF at) : view_(view), orbits_(orbits), last_(at) {}
    void move(double x, double y) override {
        QPointF const step = QPointF(x, y) - std::exchange(last_, QPointF(x, y));
        orbits_ ? view_.camera_.orbit(step.x(), step.y()) : view_.camera_.pan(step.x(), step.y(), view_.height());
        view_.refresh();
    }

private:
    Viewport& view_;
    bool const orbits_;
    QPointF last_;
};

/// Selects what is in a box, or under a click.
class Viewport::BoxDrag final : public Drag {
public:
    BoxDrag(Viewport& view, QPoint at, bool adds) : view_(view), from_(at), adds_(adds) {}
    ~BoxDrag() override { view_.box_ = {}; }
    void move(double x, double y) override {
        view_.box_ = QRect(from_, QPoint(static_cast<int>(x), static_cast<int>(y))).normalized();
        view_.update();
    }
    void finish() override {
        auto& document = view_.editor_.document();
        auto selected = adds_ ? document.selection() : ur::vector<Object*>();
        QRect const box = view_.box_.isNull() ? QRect(from_, QSize(1, 1)) : view_.box_;
        if (view_.shown_) {
            for (Object* const found :
                 view_.shown_->objectsIn(box.left(), box.top(), box.right() + 1, box.bottom() + 1)) {
                auto const place = std::ranges::find(selected, found);
                place == selected.end() ? selected.push_back(found) : static_cast<void>(selected.erase(place));
            }
        }
        document.select(selected);
    }

private:
    Viewport& view_;
    QPoint const from_;
    bool const adds_;
};

Viewport::Viewport(Editor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor), slot_(ur::make<nxSupport::CursorSlot>(this)) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(200, 150);
    timer_.setSingleShot(true);
    timer_.callOnTimeout(this, [this] { drawSlice(); });
    editor.changedSignal.addCallback(client_, this, &Viewport::refresh);
    auto& document = editor.document();
    document.selectionSignal().addCallback(client_, this, &Viewport::refresh);
    document.insertedSignal().addCallback(client_, [this](Object&, std::size_t, Object&) { refresh(); });
    document.removedSignal().addCallback(client_, [this](Object&, std::size_t, Object&) { refresh(); });
    document.replacedSignal().addCallback(client_, [this] {
        isFramed_ = false;
        refresh();
    });
    slot_->cursorsChanged.addCallback(client_, this, &Viewport::showCursor);
}

Viewport::~Viewport() = default;

void Viewport::setTool(Tool tool) {
    tool_ = tool;
    requestCursor(tool == Tool::smooth ? "brush" : "");
    update();
}

void Viewport::frameSelection() {
    urLinear::Range3d box;
    for (Object const* const object : editor_.document().selection()) box.include(editor_.shapes().boundsOf(*object));
    lookAt(box.empty() ? editor_.shapes().boundsOf(editor_.document().root()) : box);
}

void Viewport::lookAt(urLinear::Range3d const& box) {
    camera_.frame(box);
    refresh();
}

// [slices]
void Viewport::refresh() {
    isDirty_ = true;
    if (!timer_.isActive()) timer_.start(0);
}

/// A quick picture is finished even if the scene changes meanwhile, so that moving ones follow each other.
void Viewport::drawSlice() {
    nxSupport::PerfScope scope;
    scope.charge(nxSupport::Perf_DrawScene);
    auto const begin = Clock::now();
    if (!isFramed_) {
        auto const box = editor_.shapes().boundsOf(editor_.document().root());
        isFramed_ = !box.empty() && !editor_.jobs().isBusy();  // the meshes of a scene that was opened have come
        if (isFramed_) lookAt(box);
    }
    bool const isRefining = pending_ && pending_->isFull() && shown_ && !shown_->isFull();
    if (isDirty_ && (!pending_ || isRefining)) {
        isDirty_ = false;
        pending_ = std::make_unique<Frame>(editor_, projection(), Frame::Quality::quick);
        pendingMilliseconds_ = 0;
    }
    if (!pending_) return;
    bool const isComplete = pending_->drawFor(sliceTime);
    pendingMilliseconds_ += std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    if (isComplete) {
        shown_ = std::move(pending_);
        frameMilliseconds_ = std::exchange(pendingMilliseconds_, 0);
        update();
        if (!shown_->isFull() && !isDirty_ && !drag_) {
            pending_ = std::make_unique<Frame>(editor_, projection(), Frame::Quality::full);
        }
    }
    if (pending_ || isDirty_) timer_.start(0);
}
// [slices]

Projection Viewport::projection() const { return {camera_, std::max(width(), 1), std::max(height(), 1)}; }

void Viewport::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(43, 48, 54));
    painter.setRenderHint(QPainter::Antialiasing);
    drawFloor(painter);
    if (shown_) {
        auto const& drawn = shown_->rasterizer();
        auto const* const bytes = reinterpret_cast<uchar const*>(drawn.pixels().data());
        painter.drawImage(0, 0,
                          QImage(bytes, drawn.projection().width(), drawn.projection().height(),
                                 QImage::Format_ARGB32_Premultiplied));
    }
    drawHandles(painter);
    if (!box_.isNull()) {
        painter.setPen(Qt::white);
        painter.drawRect(box_);
    }
}

/// A grid of metres, or of a power of ten of them, as wide as the view.
void Viewport::drawFloor(QPainter& painter) const {
    Projection const shown = projection();
    double const step = std::pow(10, std::floor(std::log10(camera_.distance / 8)));
    painter.setPen(QColor(70, 76, 84));
    auto const line = [&](Point const& from, Point const& to) {
        Point const a = shown.pixel(from), b = shown.pixel(to);
        if (a.z > 0 && b.z > 0) painter.drawLine(QPointF(a.x, a.y), QPointF(b.x, b.y));
    };
    for (int i = -10; i <= 10; ++i) {
        line({i * step, -10 * step, 0}, {i * step, 10 * step, 0});
        line({-10 * step, i * step, 0}, {10 * step, i * step, 0});
    }
}

void Viewport::drawHandles(QPainter& painter) const {
    auto const shown = handles();
    if (!shown) return;
    QColor const colours[] = {QColor(230, 80, 70), QColor(110, 190, 70), QColor(80, 130, 240)};
    for (int axis = 0; axis < 3; ++axis) {
        QPolygonF line;
        for (auto const& point : shown->curve(axis)) line << QPointF(point.x, point.y);
        painter.setPen(QPen(colours[axis], 3));
        painter.setBrush(Qt::NoBrush);
        painter.drawPolyline(line);
        painter.setBrush(colours[axis]);
        if (shown->mode() == Handles::Mode::move) painter.drawEllipse(line.back(), 4, 4);
        if (shown->mode() == Handles::Mode::scale) painter.drawRect(QRectF(line.back() - QPointF(4, 4), QSizeF(8, 8)));
    }
}

std::optional<Handles> Viewport::handles() const {
    auto const selection = editor_.document().selection();
    if (tool_ == Tool::smooth || selection.empty()) return std::nullopt;
    urLinear::Range3d box;
    for (Object const* const object : selection) box.include(editor_.shapes().boundsOf(*object));
    Point const centre = box.empty() ? worldOf(*selection.front()).translation() : box.center();
    if (projection().pixel(centre).z <= 0) return std::nullopt;
    auto const mode = tool_ == Tool::move     ? Handles::Mode::move
                      : tool_ == Tool::rotate ? Handles::Mode::rotate
                                              : Handles::Mode::scale;
    return Handles(mode, centre, projection());
}

// [mouse]
std::unique_ptr<Drag> Viewport::dragFor(QMouseEvent const& event) {
    QPointF const at = event.position();
    bool const orbits = event.button() == Qt::MiddleButton || event.modifiers().testFlag(Qt::AltModifier);
    if (orbits || event.button() == Qt::RightButton) return std::make_unique<CameraDrag>(*this, orbits, at);
    if (tool_ == Tool::smooth) return brushAt(at);
    if (auto const shown = handles()) {
        int const axis = shown->axisAt(at.x(), at.y());
        if (axis >= 0) return std::make_unique<HandleDrag>(editor_, *shown, axis, at.x(), at.y());
    }
    return std::make_unique<BoxDrag>(*this, at.toPoint(), event.modifiers().testFlag(Qt::ControlModifier));
}

void Viewport::mousePressEvent(QMouseEvent* event) {
    if (drag_ || event->button() == Qt::NoButton) return;
    drag_ = dragFor(*event);
    button_ = event->button();
    if (drag_ && tool_ == Tool::smooth) drag_->move(event->position().x(), event->position().y());
}

void Viewport::mouseMoveEvent(QMouseEvent* event) {
    QPointF const at = event->position();
    if (drag_) return drag_->move(at.x(), at.y());
    auto const shown = handles();
    if (tool_ != Tool::smooth) requestCursor(shown && shown->axisAt(at.x(), at.y()) >= 0 ? "arrows" : "");
}

void Viewport::mouseReleaseEvent(QMouseEvent* event) {
    if (!drag_ || event->button() != button_) return;
    std::unique_ptr<Drag> const done = std::move(drag_);
    done->finish();
    refresh();
}

void Viewport::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape || !drag_) return QWidget::keyPressEvent(event);
    drag_.reset();
    refresh();
}
// [mouse]

std::unique_ptr<Drag> Viewport::brushAt(QPointF at) {
    Object* const mesh = shown_ ? shown_->objectAt(static_cast<int>(at.x()), static_cast<int>(at.y())) : nullptr;
    if (!mesh) return nullptr;
    auto const find = [this, mesh](double x, double y) -> std::optional<Point> {
        int const px = static_cast<int>(x), py = static_cast<int>(y);
        if (!shown_ || shown_->objectAt(px, py) != mesh) return std::nullopt;
        return shown_->rasterizer().placeAt(px, py);
    };
    auto const place = find(at.x(), at.y());
    return std::make_unique<BrushDrag>(editor_, *mesh, brushPixels / projection().scaleAt(*place), find);
}

void Viewport::wheelEvent(QWheelEvent* event) {
    camera_.zoom(std::pow(0.999, event->angleDelta().y()));
    refresh();
}

void Viewport::resizeEvent(QResizeEvent*) { refresh(); }

// [cursor]
void Viewport::requestCursor(char const* name) {
    if (cursor_ && cursor_->name() == name) return;
    cursor_ = *name ? ur::make<nxSupport::Cursor>(this, name, slot_.get()) : nullptr;
}

void Viewport::showCursor() {
    auto const* const wanted = slot_->cursorWithPrecedence();
    if (!wanted) return unsetCursor();
    setCursor(wanted->name() == "brush" ? Qt::CrossCursor : Qt::SizeAllCursor);
}
// [cursor]

}  // namespace scene
