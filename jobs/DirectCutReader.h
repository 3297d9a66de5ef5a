#pragma once

#include "DirectStretch.h"
#include "NewestQuestion.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <optional>

namespace velmora {

/// Finds out, on a thread of its own, what a direct cut would take of a file. Only the newest
/// question is answered. Main thread.
class DirectCutReader : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

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
    NewestQuestion question_; ///< last, so that all it uses outlives it
};

} // namespace velmora
