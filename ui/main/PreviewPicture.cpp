#include "PreviewPicture.h"

#include "ConversionEngine.h"
#include "FirstInput.h"
#include "customImageView.h"

#include <QFileInfo>
#include <QImage>

namespace velmora {
namespace {

constexpr const char* kSnapshotFile = "/tmp/pic.bmp";

/// Writes the picture at `seconds` of the engine's `probePath`.
void snapshotAt(double seconds) {
    ConversionEngine& engine = ConversionEngine::instance();
    const FirstInput first;
    engine.startTimes[0] = seconds;
    engine.snapshot();
}

} // namespace

PreviewPicture::PreviewPicture(customImageView& view) : view_(view) {}

void PreviewPicture::showFirst(const QString& source) {
    ConversionEngine::instance().snapshotPath = kSnapshotFile;
    snapshotAt(0.0);
    show(markOf(source));
}

/// Every load subscribes to the bar once more, so one move comes here many times. Only the first
/// finds another picture to show.
void PreviewPicture::showAt(const QString& source, float seconds) {
    ConversionEngine::instance().probePath = source.toStdString();
    snapshotAt(static_cast<double>(seconds));
    const Mark mark = markOf(source);
    if (shown_ != mark) {
        show(mark);
    }
}

void PreviewPicture::show(const Mark& mark) {
    view_.setImage(NamedImage(QImage(kSnapshotFile, "bmp")));
    view_.setImageScaling(customImageView::kStretchToFill);
    shown_ = mark;
}

PreviewPicture::Mark PreviewPicture::markOf(const QString& source) {
    const QFileInfo file(kSnapshotFile);
    return {source, ConversionEngine::instance().startTimes[0], file.lastModified(), file.size()};
}

} // namespace velmora
