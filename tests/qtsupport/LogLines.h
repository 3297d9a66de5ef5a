#pragma once

#include <QStringList>
#include <QtGlobal>

namespace velmora::test {

/// Collects the lines that the platform log is given during its life, from any thread; one lives at
/// a time.
class LogLines {
public:
    LogLines();
    ~LogLines();
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;

    QStringList all() const;
    bool contains(const QString& line) const { return all().contains(line); }
    qsizetype count(const QString& line) const { return all().count(line); }
    void clear();

private:
    static void take(QtMsgType type, const QMessageLogContext& context, const QString& line);

    QStringList lines_;
    QtMessageHandler before_;
};

} // namespace velmora::test
