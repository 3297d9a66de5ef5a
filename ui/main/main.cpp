// Velmora: cuts a stretch out of a video, and joins videos.

#include "ConversionEngine.h"
#include "EngineLog.h"
#include "MainController.h"
#include "MainWindow.h"
#include "PlatformLog.h"

extern "C" {
#include <libavutil/log.h>
}

#include <QApplication>
#include <QFileInfo>
#include <QIcon>
#include <QTimer>

#include <array>
#include <cstdarg>

namespace {

void logEngineLine(void* object, int level, const char* format, va_list arguments) {
    if (level > AV_LOG_INFO)
        return;
    std::array<char, 1024> line{};
    int prefix = 1;
    av_log_format_line(object, level, format, arguments, line.data(), line.size(), &prefix);
    velmora::platformLog(QString::fromUtf8(line.data()).trimmed());
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
    velmora::ConversionEngine::instance(); // gives the libraries their own log when it is made
    velmora::setLogSink(logEngineLine);

    velmora::MainController controller;
    controller.awakeFromNib();
    controller.mainWin().show();
    const QString file = fileToOpen();
    if (!file.isEmpty())
        QTimer::singleShot(0, &controller, [&] { controller.mouseDownListener(file); });
    return QApplication::exec();
}
