#pragma once

#include "CopyForecast.h"
#include "Job.h"
#include "StopFlag.h"

#include <QObject>
#include <QString>
#include <QThreadPool>

#include <atomic>
#include <optional>

namespace velmora {

/// Asks the engine, on a thread of its own, what an exact copy would do. Only the last question
/// counts. Main thread.
class CopyForecastReader : public QObject {
    Q_OBJECT

public:
    explicit CopyForecastReader(QObject* parent = nullptr);
    /// Ends the reading.
    ~CopyForecastReader() override;
    CopyForecastReader(const CopyForecastReader&) = delete;
    CopyForecastReader& operator=(const CopyForecastReader&) = delete;

    /// An exact copy of this window of the source at `path`, into this output. The same question as
    /// before is asked once.
    void read(const QString& path, const Window& window, const QString& outputPath);
    /// The answer to the last question; nothing before it has come.
    const std::optional<CopyForecast>& forecast() const { return forecast_; }

Q_SIGNALS:
    /// The answer has come.
    void known();

private:
    struct Question {
        QString path;
        Window window;
        QString outputPath;
    };

    void work(int number, const Question& question);
    void keep(int number, const CopyForecast& forecast);

    std::optional<Question> question_;
    std::optional<CopyForecast> forecast_;
    std::atomic<int> last_{0}; ///< the number of the last question
    StopFlag stop_{0};
    QThreadPool worker_; ///< of one thread; last, so that all it uses outlives it
};

/// What the forecast says, as a line for the user.
QString sentenceOf(const CopyForecast& forecast);

} // namespace velmora
