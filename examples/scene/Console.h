// A prompt for scripts.
#pragma once

#include <QCompleter>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStringListModel>

#include "examples/scene/Scripting.h"

namespace scene {

/// Runs lines, shows what they print, completes names, and remembers lines for the up and down keys.
class Console final : public QWidget {
public:
    explicit Console(Editor& editor, Scripting& scripting, QWidget* parent = nullptr);

    [[nodiscard]] QLineEdit& input() { return *input_; }
    [[nodiscard]] QString text() const { return output_->toPlainText(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void print(std::string_view text);
    void run();
    void complete();

    Scripting& scripting_;
    QPlainTextEdit* const output_;  ///< its children are owned by the widget
    QLineEdit* const input_;
    QStringListModel names_;
    QStringList lines_;
    qsizetype line_ = 0;  ///< of `lines_`, that is shown
    urRTB::SignalClient client_;
};

}  // namespace scene
