// Output, input, completion.
#include "examples/scene/Console.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <algorithm>

namespace scene {

Console::Console(Editor& editor, Scripting& scripting, QWidget* parent)
    : QWidget(parent), scripting_(scripting), output_(new QPlainTextEdit), input_(new QLineEdit) {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(output_);
    layout->addWidget(input_);
    output_->setReadOnly(true);
    output_->setMaximumBlockCount(10000);
    input_->setPlaceholderText("Lua, such as scene.find(\"Spider\").position = {0, 0, 1}");
    input_->installEventFilter(this);
    auto* const completer = new QCompleter(&names_, this);
    completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    input_->setCompleter(completer);
    connect(input_, &QLineEdit::textEdited, this, [this] { complete(); });
    connect(input_, &QLineEdit::returnPressed, this, [this] { run(); });
    scripting.printed.addCallback(client_, this, &Console::print);
    editor.messageSignal.addCallback(client_, [this](std::string_view text) { print(std::string(text) + "\n"); });
}

void Console::print(std::string_view text) {
    output_->moveCursor(QTextCursor::End);
    output_->insertPlainText(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

void Console::run() {
    QString const line = input_->text();
    if (line.trimmed().isEmpty()) return;
    lines_.append(line);
    line_ = lines_.size();
    input_->clear();
    print("> " + line.toStdString() + "\n");
    scripting_.run(line.toStdString(), "console");
}

// [complete]
void Console::complete() {
    std::string const line = input_->text().left(input_->cursorPosition()).toStdString();
    auto const completion = scripting_.complete(line);
    QStringList whole;
    for (auto const& name : completion.names) {
        whole.append(QString::fromStdString(line.substr(0, completion.begin) + std::string(name)));
    }
    names_.setStringList(whole);
}
// [complete]

bool Console::eventFilter(QObject* watched, QEvent* event) {
    auto const* const key = event->type() == QEvent::KeyPress ? static_cast<QKeyEvent*>(event) : nullptr;
    int const step = !key ? 0 : key->key() == Qt::Key_Up ? -1 : key->key() == Qt::Key_Down ? 1 : 0;
    if (step == 0 || input_->completer()->popup()->isVisible()) return QWidget::eventFilter(watched, event);
    line_ = std::clamp<qsizetype>(line_ + step, 0, lines_.size());
    input_->setText(lines_.value(line_));
    return true;
}

}  // namespace scene
