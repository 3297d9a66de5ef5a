#pragma once

#include "SourceFacts.h"
#include "StopFlag.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QThreadPool>

#include <atomic>
#include <optional>

class QTimer;

namespace velmora {

/// Finds out about sources on a thread of its own, one after another, at most a second for each.
/// Main thread.
class SourceFactsReader : public QObject {
    Q_OBJECT

public:
    explicit SourceFactsReader(QObject* parent = nullptr);
    /// Ends the reading.
    ~SourceFactsReader() override;
    SourceFactsReader(const SourceFactsReader&) = delete;
    SourceFactsReader& operator=(const SourceFactsReader&) = delete;

    /// The file at `path` is to be looked at, also if it has been before.
    void read(const QString& path);
    /// What is known of it; nothing before it has been looked at.
    std::optional<SourceFacts> factsOf(const QString& path) const;

Q_SIGNALS:
    /// Facts of this file have come.
    void known(const QString& path);

private:
    void work(const QString& path);
    void keep(const QString& path, const SourceFacts& facts);
    void endWhatTakesTooLong();

    QHash<QString, SourceFacts> facts_;
    QSet<QString> waiting_; ///< of each file at most one reading is to come
    QTimer* watch_;         ///< a child of this
    QElapsedTimer clock_;
    std::atomic<std::int64_t> begunMs_{0}; ///< by the clock, the file in hand
    std::atomic<bool> ending_{false};
    StopFlag stop_{0};
    QThreadPool worker_; ///< of one thread; last, so that all it uses outlives it
};

} // namespace velmora
