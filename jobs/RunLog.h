#pragma once

#include <QString>
#include <QStringList>

#include <mutex>
#include <thread>

namespace velmora {

/// What the engine has written to its log for the run that was started last. What is logged on the
/// main thread belongs to probes and previews, and is left out. Any thread, but for its making.
class RunLog {
public:
    /// The log of the process; first called on the main thread.
    static RunLog& instance();

    /// A run begins: the lines of the one before are dropped.
    void begin(const QString& what);
    /// What this thread logs is not about runs: it is left out from here on.
    static void leaveOutThisThread();
    void add(const QString& line);
    /// All lines, each with its end.
    QString text() const;

private:
    RunLog() = default;

    mutable std::mutex mutex_;
    QStringList lines_;
    const std::thread::id mainThread_ = std::this_thread::get_id();
};

} // namespace velmora
