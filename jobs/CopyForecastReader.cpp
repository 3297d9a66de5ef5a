#include "CopyForecastReader.h"

#include "MediaOperations.h"

#include <QLocale>

namespace velmora {

CopyForecastReader::CopyForecastReader(QObject* parent) : QObject(parent) {
    worker_.setMaxThreadCount(1);
}

CopyForecastReader::~CopyForecastReader() {
    ++last_;
    stop_ = 1;
    worker_.clear();
    worker_.waitForDone();
}

void CopyForecastReader::read(const QString& path, const Window& window,
                              const QString& outputPath) {
    if (question_ && question_->path == path && question_->outputPath == outputPath &&
        question_->window.startMs == window.startMs && question_->window.endMs == window.endMs) {
        return;
    }
    question_ = Question{path, window, outputPath};
    forecast_.reset();
    const int number = ++last_;
    stop_ = 1;
    worker_.clear();
    worker_.start([this, number, question = *question_] { work(number, question); });
}

/// On the thread.
void CopyForecastReader::work(int number, const Question& question) {
    stop_ = 0;
    if (number != last_) { // the next one has been asked meanwhile, and has raised the flag
        return;
    }
    const CopyForecast forecast = mediaOperations().forecastCopy(
        question.path.toStdString(), question.window, question.outputPath.toStdString(), stop_);
    QMetaObject::invokeMethod(
        this, [this, number, forecast] { keep(number, forecast); }, Qt::QueuedConnection);
}

void CopyForecastReader::keep(int number, const CopyForecast& forecast) {
    if (number == last_) {
        forecast_ = forecast;
        Q_EMIT known();
    }
}

QString sentenceOf(const CopyForecast& forecast) {
    if (!forecast.refusal.empty()) {
        return QString::fromStdString(forecast.refusal) +
               " Re-encode it, or begin at a key frame without Exact.";
    }
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const QString about = forecast.isEstimate ? "about " : "";
    const QString all = about + english.toString(static_cast<qlonglong>(forecast.pictures));
    if (forecast.encoded == 0) {
        return QString("None of %1 pictures is encoded again.").arg(all);
    }
    return QString("%1 of %2 pictures are encoded again.")
        .arg(english.toString(static_cast<qlonglong>(forecast.encoded)), all);
}

} // namespace velmora
