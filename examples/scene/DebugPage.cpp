// Switches and buttons.
#include "examples/scene/DebugPage.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QPushButton>
#include <QSpinBox>

#include "foundation/urOS/AppOutput.h"
#include "support/services/Debug.h"
#include "support/services/Performance.h"

namespace scene {

using nxSupport::Debug;
using nxSupport::DebugCode;

DebugPage::DebugPage(Editor& editor, QWidget* parent) : QWidget(parent), editor_(editor), codes_(new QListWidget) {
    auto* const form = new QFormLayout(this);
    auto* const limit = new QSpinBox;
    limit->setObjectName("cacheLimit");
    limit->setRange(1, 1 << 20);
    limit->setSuffix(" MiB");
    limit->setValue(static_cast<int>(editor.settings().cacheMegabytes));
    connect(limit, &QSpinBox::valueChanged, this, [this](int value) {
        Settings settings = editor_.settings();
        settings.cacheMegabytes = value;
        editor_.setSettings(settings);
    });
    form->addRow("Cache", limit);

    // [times]
    auto* const times = new QPushButton("Print times");
    connect(times, &QPushButton::clicked, this,
            [] { nxSupport::Performance::getInstance().printTimes(urOS::AppOutput::getInstance()); });
    auto* const record = new QCheckBox("Record a time line");
    record->setObjectName("record");
    connect(record, &QCheckBox::toggled, this, [this](bool isOn) {
        isOn ? editor_.startTimeline() : static_cast<void>(editor_.writeTimeline(editor_.folder() / "timeline.json"));
    });
    // [times]
    form->addRow(times);
    form->addRow(record);
    form->addRow(codes_);
    fillCodes();
}

// [codes]
void DebugPage::fillCodes() {
    for (int i = 0; i < nxSupport::NUM_CODES; ++i) {
        auto const code = static_cast<DebugCode>(i);
        auto* const item = new QListWidgetItem(QString::fromUtf8(Debug::describe(code).c_str()), codes_);
        item->setCheckState(Debug::getInstance().isEnabled(code) ? Qt::Checked : Qt::Unchecked);
    }
    connect(codes_, &QListWidget::itemChanged, this, [this](QListWidgetItem const* item) {
        auto const code = static_cast<DebugCode>(codes_->row(item));
        item->checkState() == Qt::Checked ? Debug::getInstance().enable(code) : Debug::getInstance().disable(code);
    });
}
// [codes]

}  // namespace scene
