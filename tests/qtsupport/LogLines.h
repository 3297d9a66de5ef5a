#pragma once

#include <QStringList>
#include <QtGlobal>

namespace velmora::test {

/// Collects the lines that the platform log is given during its life; one at a time.
class LogLines {
public:
    LogLines();
    ~LogLines();
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;

    const QStringList& all() const { return lines_; }
    bool contains(const QString& line) const { return lines_.contains(line); }
    qsizetype count(const QString& line) const { return lines_.count(line); }
    void clear() { lines_.clear(); }

private:
    static void take(QtMsgType type, const QMessageLogContext& context, const QString& line);

    QStringList lines_;
    QtMessageHandler before_;
};

} // namespace velmora::test
