// The queue of the main thread inside Qt's event loop.
#pragma once

#include <QMetaObject>
#include <QObject>

#include "foundation/urThread/RunQueue.h"

namespace scene {

// [queue]
/// Services itself from the event loop of the thread that made it.
class Queue final : public urThread::RunQueue {
private:
    void onAdd() override {
        QMetaObject::invokeMethod(
            &receiver_, [this] { service(); }, Qt::QueuedConnection);
    }

    QObject receiver_;  ///< calls that are still posted end with it
};
// [queue]

}  // namespace scene
