// Debug codes, times, the cache's limit, and time lines.
#pragma once

#include <QLabel>
#include <QListWidget>

#include "examples/scene/Editor.h"

namespace scene {

/// What the programmers of a tool look at.
class DebugPage final : public QWidget {
public:
    explicit DebugPage(Editor& editor, QWidget* parent = nullptr);

    [[nodiscard]] QListWidget& codes() { return *codes_; }

private:
    void fillCodes();

    Editor& editor_;
    QListWidget* const codes_;
};

}  // namespace scene
