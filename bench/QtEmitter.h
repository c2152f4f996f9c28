// A Qt object with one signal, and a Qt object that listens to it.
#pragma once

#include <QObject>

namespace bench {

class QtEmitter : public QObject {
    Q_OBJECT
public:
    void send(int value) { Q_EMIT sent(value); }
Q_SIGNALS:
    void sent(int value);
};

}  // namespace bench
