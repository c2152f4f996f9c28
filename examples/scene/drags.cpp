// Handles and the brush.
#include "examples/scene/drags.h"

#include <cmath>

namespace scene {

using nxSupport::Object;
using nxSupport::Transformer;
using urLinear::AffineMatrix;
using urLinear::Line;
using urLinear::Normal;
using urLinear::Point;
using urLinear::Vector;
using Mode = Handles::Mode;

namespace {

urString::CString nameOf(Mode mode) { return mode == Mode::move ? "Move" : mode == Mode::rotate ? "Rotate" : "Scale"; }

}  // namespace

// [handles]
HandleDrag::HandleDrag(Editor& editor, Handles const& handles, int axis, double x, double y)
    : handles_(handles),
      axis_(axis),
      begin_(handles.valueAt(axis, x, y)),
      interaction_(editor, editor.document(), nameOf(handles.mode())) {
    for (Object* const object : topmost(editor.document().selection())) {
        if (!object->parent()) continue;
        objects_.emplace_back(object);
        places_.push_back(worldOf(*object));
    }
    Line const line(handles.centre(), Normal(Handles::axis(axis)));
    switch (handles.mode()) {
        case Mode::move: transformer_->startTranslate({}); break;
        case Mode::rotate: transformer_->startRotate({}, line); break;
        case Mode::scale: transformer_->startScale({}, handles.centre()); break;
    }
    transformer_->transformChanged.addCallback(client_, this, &HandleDrag::apply);
}

void HandleDrag::move(double x, double y) {
    double const value = handles_.valueAt(axis_, x, y);
    switch (handles_.mode()) {
        case Mode::move: return transformer_->setTranslate(Handles::axis(axis_) * (value - begin_));
        case Mode::rotate: return transformer_->setRotate(value - begin_);
        case Mode::scale: {
            Vector factors(1, 1, 1);
            if (begin_ != 0) factors[axis_] = std::max(value / begin_, 0.01);
            return transformer_->setScale(factors);
        }
    }
}

void HandleDrag::apply(Transformer* transformer) {
    AffineMatrix total;
    transformer->getXForm(total, false);
    interaction_.perform([&] {
        for (std::size_t i = 0; i < objects_.size(); ++i) setWorld(*objects_[i], places_[i] * total);
    });
}

void HandleDrag::finish() {
    transformer_->finish();
    interaction_.finish();
}
// [handles]

BrushDrag::BrushDrag(Editor& editor, Object& mesh, double radius, Find find)
    : mesh_(&mesh), radius_(radius), find_(std::move(find)), interaction_(editor, editor.document(), "Smooth") {}

void BrushDrag::move(double x, double y) {
    auto const place = find_(x, y);
    AffineMatrix const world = worldOf(*mesh_);
    double const scale = std::cbrt(std::abs(world.determinant()));
    if (!place || scale == 0) return;
    interaction_.perform([&] { addStroke(*mesh_, {*place * world.inverse(), radius_ / scale, 0.5}); });
}

}  // namespace scene
