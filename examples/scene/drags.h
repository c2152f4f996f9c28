// What the mouse does between press and release.
#pragma once

#include <memory>

#include "examples/scene/Editor.h"
#include "examples/scene/Handles.h"
#include "support/documents/Interaction.h"
#include "support/services/Transformer.h"

namespace scene {

/// Follows the mouse. Destroyed without `finish`, it takes back what it did.
class Drag {
public:
    Drag() = default;
    Drag(Drag const&) = delete;
    Drag& operator=(Drag const&) = delete;
    virtual ~Drag() = default;

    /// In pixels of the view.
    virtual void move(double x, double y) = 0;
    virtual void finish() {}
};

/// Moves, turns or scales the selected objects by a handle.
class HandleDrag final : public Drag {
public:
    HandleDrag(Editor& editor, Handles const& handles, int axis, double x, double y);

    void move(double x, double y) override;
    void finish() override;

private:
    void apply(nxSupport::Transformer* transformer);

    Handles const handles_;
    int const axis_;
    double const begin_;  ///< the handle's value at the press
    nxSupport::Interaction interaction_;
    std::vector<ur::Reference<nxSupport::Object>> objects_;
    std::vector<urLinear::AffineMatrix> places_;  ///< of the objects at the press
    ur::Reference<nxSupport::Transformer> transformer_ = ur::make<nxSupport::Transformer>();
    urRTB::SignalClient client_;
};

/// Smooths a mesh where the brush touches it.
class BrushDrag final : public Drag {
public:
    /// Tells the place on the mesh at a pixel, in the world; empty beside it.
    using Find = std::function<std::optional<urLinear::Point>(double x, double y)>;

    BrushDrag(Editor& editor, nxSupport::Object& mesh, double radius, Find find);

    void move(double x, double y) override;
    void finish() override { interaction_.finish(); }

private:
    ur::Reference<nxSupport::Object> const mesh_;
    double const radius_;  ///< in the world
    Find const find_;
    nxSupport::Interaction interaction_;
};

}  // namespace scene
