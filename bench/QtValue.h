// A Qt object with one value and signals for its changes.
#pragma once

#include <QObject>
#include <QVariant>

namespace bench {

class QtValue : public QObject {
    Q_OBJECT
public:
    QVariant const& value() const { return value_; }
    void setValue(QVariant const& value) {
        Q_EMIT starting(this);
        value_ = value;
        Q_EMIT changed(this);
        Q_EMIT finished(this);
    }
Q_SIGNALS:
    void starting(bench::QtValue* value);
    void changed(bench::QtValue* value);
    void finished(bench::QtValue* value);

private:
    QVariant value_;
};

}  // namespace bench
