#pragma once

#include <QLineEdit>

#include <cstdint>

namespace velmora {

/// A field to type a position, over the one that shows it. Return goes there, Escape or going
/// elsewhere closes it; with what is no time it stays. Main thread.
class PositionField : public QLineEdit {
    Q_OBJECT

public:
    /// Lies over `place` when it is open, and goes with it.
    explicit PositionField(QLineEdit& place);

    /// Opens it with this time in it, to be typed over.
    void open(const QString& time);

Q_SIGNALS:
    void chosen(qint64 ms);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void close();

    QLineEdit& place_;
};

} // namespace velmora
