#pragma once

#include "DirectStretch.h"
#include "StopFlag.h"

#include <QObject>
#include <QString>
#include <QThreadPool>

#include <cstdint>
#include <memory>
#include <optional>

namespace velmora {

/// Finds out, on a thread of its own, what a direct cut would take of a file. Only the newest
/// question is answered. Main thread.
class DirectCutReader : public QObject {
    Q_OBJECT

public:
    explicit DirectCutReader(QObject* parent = nullptr);
    /// Gives up what is asked.
    ~DirectCutReader() override;
    DirectCutReader(const DirectCutReader&) = delete;
    DirectCutReader& operator=(const DirectCutReader&) = delete;

    void ask(const QString& path, std::int64_t startMs, std::int64_t endMs);
    /// Nothing is asked any more.
    void forget();
    /// The answer; nothing until it has come, and where it cannot be told.
    const std::optional<DirectStretch>& stretch() const { return stretch_; }

Q_SIGNALS:
    /// The answer is another one: there is one, or none any more.
    void changed();

private:
    void take(const std::optional<DirectStretch>& stretch);

    std::optional<DirectStretch> stretch_;
    std::shared_ptr<StopFlag> stop_; ///< of the newest question
    QThreadPool worker_;             ///< of one thread; last, so that all it uses outlives it
};

} // namespace velmora
