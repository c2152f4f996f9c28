// Controls for kinds of values.
#include "examples/scene/PropertyPanel.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <array>
#include <cmath>

#include "plst/plst.h"

namespace scene {

using nxSupport::PropertyDescription;
using Item = ur::Reference<nxPLST::Item const>;
using Property = ur::Reference<nxSupport::Property>;
using nxPLST::valueOf;

namespace {

constexpr double farthest = 1e9;
constexpr int sliderSteps = 1000;

QString text(urString::CString const& from) { return QString::fromUtf8(from.c_str()); }

/// A control, and how it shows a value; a null one stands for several.
struct Control {
    QWidget* widget;
    std::function<void(Item const&)> show;
};

/// Sets a value as a step of its own, or as a part of a drag.
template <class T>
void set(Property const& property, T const& value, nxSupport::PropertyModType type = nxSupport::ModifyAll) {
    property->setValue(nxPLST::itemOf(value), type);
}

Control checkBox(Property const& property) {
    auto* const box = new QCheckBox;
    QObject::connect(box, &QCheckBox::clicked, box, [property](bool isOn) { set(property, isOn); });
    return {box, [box](Item const& item) {
                box->setCheckState(!item ? Qt::PartiallyChecked : valueOf<bool>(item) ? Qt::Checked : Qt::Unchecked);
            }};
}

Control lineEdit(Property const& property) {
    auto* const edit = new QLineEdit;
    QObject::connect(edit, &QLineEdit::editingFinished, edit, [edit, property] {
        if (edit->isModified()) set(property, edit->text().toStdString());
    });
    return {edit, [edit](Item const& item) {
                edit->setText(QString::fromStdString(valueOf<std::string>(item)));
                edit->setPlaceholderText(item ? "" : "several");
            }};
}

Control comboBox(Property const& property, PropertyDescription const& description) {
    auto* const box = new QComboBox;
    for (auto const& choice : description.choices) box->addItem(text(valueOf<urString::CString>(choice.item())));
    QObject::connect(box, &QComboBox::activated, box,
                     [box, property](int) { set(property, box->currentText().toStdString()); });
    return {box, [box](Item const& item) {
                box->setCurrentIndex(box->findText(QString::fromStdString(valueOf<std::string>(item))));
            }};
}

QDoubleSpinBox* spinBox(PropertyDescription const& description) {
    auto* const box = new QDoubleSpinBox;
    bool const isPercent = description.unit == "%";
    box->setDecimals(isPercent ? 2 : 3);
    box->setRange(description.minimum.value_or(-farthest), description.maximum.value_or(farthest));
    box->setSingleStep(description.step.value_or(0.1));
    box->setKeyboardTracking(false);
    box->setMinimumWidth(60);
    if (!description.unit.empty() && !isPercent) box->setSuffix(" " + text(description.unit));
    return box;
}

Control numberBox(Property const& property, PropertyDescription const& description) {
    auto* const box = spinBox(description);
    QObject::connect(box, &QDoubleSpinBox::valueChanged, box, [property](double value) { set(property, value); });
    return {box, [box](Item const& item) { box->setValue(valueOf<double>(item, box->minimum())); }};
}

// [slider]
/// A drag of the slider is one step.
Control slider(Property const& property, PropertyDescription const& description) {
    auto* const slider = new QSlider(Qt::Horizontal);
    double const minimum = description.minimum.value_or(0);
    double const width = description.maximum.value_or(1) - minimum;
    slider->setRange(0, sliderSteps);
    auto const value = [slider, minimum, width] { return minimum + width * slider->value() / sliderSteps; };
    QObject::connect(slider, &QSlider::sliderPressed, slider,
                     [=] { property->setValue(property->value(), nxSupport::ModifyStart); });
    QObject::connect(slider, &QSlider::valueChanged, slider, [=] {
        set(property, value(), slider->isSliderDown() ? nxSupport::ModifyPerform : nxSupport::ModifyAll);
    });
    QObject::connect(slider, &QSlider::sliderReleased, slider, [=] { set(property, value(), nxSupport::ModifyEnd); });
    return {
        slider, [=](Item const& item) {
            slider->setValue(static_cast<int>(std::lround((valueOf<double>(item) - minimum) / width * sliderSteps)));
        }};
}
// [slider]

Control vectorBoxes(Property const& property, PropertyDescription const& description) {
    auto* const row = new QWidget;
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    std::array<QDoubleSpinBox*, 3> boxes{};
    for (auto*& box : boxes) layout->addWidget(box = spinBox(description));
    for (auto* const box : boxes) {
        QObject::connect(box, &QDoubleSpinBox::valueChanged, row, [=](double) {
            set(property, std::array{boxes[0]->value(), boxes[1]->value(), boxes[2]->value()});
        });
    }
    return {row, [boxes](Item const& item) {
                auto const values = valueOf<std::array<double, 3>>(item);
                for (std::size_t i = 0; i < boxes.size(); ++i) {
                    QSignalBlocker const blocker(boxes[i]);
                    boxes[i]->setValue(values[i]);
                }
            }};
}

Control colourButton(Property const& property) {
    auto* const button = new QPushButton;
    QObject::connect(button, &QPushButton::clicked, button, [=] {
        auto const before = valueOf<urUtil::Color>(property->value());
        QColor const chosen = QColorDialog::getColor(QColor::fromRgbF(before.r, before.g, before.b), button);
        if (!chosen.isValid()) return;
        set(property, urUtil::Color(chosen.redF(), chosen.greenF(), chosen.blueF(), before.a));
    });
    return {button, [button](Item const& item) {
                auto const colour = valueOf<urUtil::Color>(item);
                QPixmap swatch(32, 12);
                swatch.fill(QColor::fromRgbF(std::clamp(colour.r, 0.0F, 1.0F), std::clamp(colour.g, 0.0F, 1.0F),
                                             std::clamp(colour.b, 0.0F, 1.0F)));
                button->setIcon(swatch);
                button->setIconSize(swatch.size());
                button->setText(item ? "" : "several");
            }};
}

// [controls]
/// The default tells the kind of the values.
Control controlFor(Property const& property, PropertyDescription const& description) {
    Item const kind = description.value.item();
    if (!description.choices.empty()) return comboBox(property, description);
    if (description.control == "colour") return colourButton(property);
    if (description.control == "slider") return slider(property, description);
    if (nxPLST::hasShape<bool>(kind)) return checkBox(property);
    if (nxPLST::hasShape<double>(kind)) return numberBox(property, description);
    if (nxPLST::hasShape<std::array<double, 3>>(kind)) return vectorBoxes(property, description);
    return lineEdit(property);
}
// [controls]

}  // namespace

PropertyPanel::PropertyPanel(Editor& editor, QWidget* parent) : QScrollArea(parent), editor_(editor) {
    setWidgetResizable(true);
    timer_.setSingleShot(true);
    timer_.callOnTimeout(this, [this] { refresh(); });
    auto const later = [this] { timer_.start(0); };
    editor.document().selectionSignal().addCallback(client_, later);
    editor.document().replacedSignal().addCallback(client_, later);
    refresh();
}

// [panel]
void PropertyPanel::refresh() {
    auto* const page = new QWidget;
    auto* const form = new QFormLayout(page);
    following_.clear();
    panel_ = std::make_unique<nxSupport::Panel>(editor_.document().selection());
    for (auto const& row : panel_->rows()) {
        auto const [widget, show] = controlFor(row.property, row.description);
        widget->setObjectName(text(row.description.name));
        widget->setEnabled(!row.description.readOnly);
        form->addRow(text(row.description.label.empty() ? row.description.name : row.description.label), widget);
        auto const showQuietly = [widget = widget, show = show, property = row.property] {
            QSignalBlocker const blocker(widget);
            show(property->value());
        };
        showQuietly();
        following_.push_back(row.property->subscribe([showQuietly](auto const&, auto) { showQuietly(); }));
    }
    if (panel_->rows().empty()) form->addRow(new QLabel("Nothing is selected"));
    setWidget(page);
}
// [panel]

}  // namespace scene
