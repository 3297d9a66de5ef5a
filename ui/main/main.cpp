// Velmora: cuts a stretch out of a video, and joins videos.

#include "ConversionEngine.h"
#include "MainController.h"
#include "MainWindow.h"
#include "MediaOperations.h"
#include "OncePainted.h"
#include "PlatformLog.h"
#include "RunLog.h"

#include <QApplication>
#include <QFileInfo>
#include <QIcon>

namespace {

void logEngineLine(const char* line) {
    const QString text = QString::fromUtf8(line).trimmed();
    velmora::platformLog(text);
    velmora::RunLog::instance().add(text);
}

/// The file that the desktop asks to open, if it does.
QString fileToOpen() {
    const QStringList arguments = QCoreApplication::arguments();
    return arguments.size() == 2 ? QFileInfo(arguments.back()).absoluteFilePath() : QString();
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QApplication::setApplicationName("Velmora");
    QApplication::setDesktopFileName("org.velmora.velmora");
    QApplication::setWindowIcon(QIcon(":/images/velmora.png"));
    velmora::ConversionEngine::instance(); // to be made before there are other threads
    velmora::RunLog::instance();           // likewise

    velmora::MainController controller;
    controller.awakeFromNib();
    const velmora::OncePainted begin(controller.mainWin(), [&controller] {
        velmora::mediaOperations().setLogSink(logEngineLine);
        const QString file = fileToOpen();
        if (!file.isEmpty()) {
            controller.mouseDownListener(file);
        }
    });
    controller.mainWin().show();
    return QApplication::exec();
}
