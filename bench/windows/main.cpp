// What the windows do, for bench/compare: a program that does one thing, prints what it took as
// JSON and ends.
//
//   velmora-windows start                 the main window, until it has been painted
//   velmora-windows load FILE             milliseconds from a drop to the painted preview
//   velmora-windows engine FILE           the same work by the engine alone: two probes, a picture
//   velmora-windows scrub FILE LOADS N    after LOADS loads: N moves of the bar, each until painted
//   velmora-windows memory FILE           KiB in use after 10 loads and after 100
//   velmora-windows timeline FILE         milliseconds for its key frames, then its sound; KiB of
//   both velmora-windows add FILE...           adding the files to the joiner velmora-windows join
//   OUT FILE...      joining files that the joiner has listed, by copying velmora-windows probe
//   FILE...         probing them by the engine alone velmora-windows steps FILE FIRST N    N steps
//   from picture FIRST on and back; this and what
//                                         follows: see Pictures.h
//   velmora-windows key-frames FILE N
//   velmora-windows cold FILE AFTER N
//   velmora-windows drag FILE
//   velmora-windows scrubbed FILE
//   velmora-windows find-keys FILE        milliseconds until its key frames are known

#include "ConversionEngine.h"
#include "ConverterThread.h"
#include "CustomSlider.h"
#include "MainController.h"
#include "MainWindow.h"
#include "MediaOperations.h"
#include "NotificationCenter.h"
#include "OncePainted.h"
#include "Pictures.h"
#include "SharedState.h"
#include "SoundPeaksReader.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QString>
#include <QStringList>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

namespace {

using velmora::ConversionEngine;
using velmora::MainController;

double millisecondsOf(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// The program's main window, as its start leaves it.
class Windows {
public:
    Windows() {
        controller_.awakeFromNib();
        controller_.mainWin().show();
        QApplication::processEvents();
    }
    MainController& controller() { return controller_; }

    void load(const QString& file) {
        controller_.mouseDownListener(file);
        paint();
    }
    void moveTo(double percent) {
        slider().setDoubleValue(percent);
        velmora::NotificationCenter::defaultCenter().post("customCrubbingBarChangedNotification",
                                                          &slider(),
                                                          {{"customCrubbingBarValue", percent}});
        paint();
    }

private:
    velmora::CustomSlider& slider() {
        return *controller_.mainWin().findChild<velmora::CustomSlider*>("mCustomSlider");
    }
    void paint() {
        QApplication::processEvents();
        controller_.mainWin().findChild<QWidget*>("mCustomImage")->repaint();
    }

    MainController controller_;
};

int showMainWindow() {
    MainController controller;
    controller.awakeFromNib();
    const velmora::OncePainted end(controller.mainWin(), [] { std::_Exit(0); });
    controller.mainWin().show();
    return QApplication::exec();
}

int load(const QString& file) {
    Windows windows;
    QElapsedTimer timer;
    timer.start();
    windows.load(file);
    std::cout << millisecondsOf(timer) << '\n';
    return 0;
}

int useEngine(const QString& file) {
    ConversionEngine& engine = ConversionEngine::instance();
    engine.probePath = file.toStdString();
    engine.snapshotPath = "/tmp/pic.bmp";
    engine.currentIndex = 0;
    engine.startTimes[0] = 0.0;
    QElapsedTimer timer;
    timer.start();
    engine.probe();
    engine.snapshot();
    engine.probe();
    std::cout << millisecondsOf(timer) << '\n';
    return 0;
}

int scrub(const QString& file, int loads, int moves) {
    Windows windows;
    for (int i = 0; i < loads; ++i) {
        windows.load(file);
    }
    const double length = windows.controller().duration();
    std::cout << '[';
    for (int i = 0; i <= moves; ++i) {
        QElapsedTimer timer;
        timer.start();
        windows.moveTo((100.0 + i) / length * 100.0);
        std::cout << (i > 0 ? ", " : "") << millisecondsOf(timer);
    }
    std::cout << "]\n";
    return 0;
}

long residentKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) {
            return std::stol(line.substr(6));
        }
    }
    return 0;
}

int memory(const QString& file) {
    Windows windows;
    std::cout << '[';
    for (int i = 1; i <= 100; ++i) {
        windows.load(file);
        if (i == 10) {
            std::cout << residentKiB() << ", ";
        }
    }
    std::cout << residentKiB() << "]\n";
    return 0;
}

/// What the timeline finds out about a video, one after the other.
int findOut(const QString& file) {
    ConversionEngine& engine = ConversionEngine::instance();
    engine.probePath = file.toStdString();
    engine.probe();
    QElapsedTimer timer;
    timer.start();
    const velmora::KeyFrames keyFrames =
        velmora::mediaOperations().readKeyFrames(file.toStdString(), velmora::StopFlag{0});
    std::cout << '[' << millisecondsOf(timer) << ", ";
    timer.start();
    velmora::SoundPeaksReader sound;
    QObject::connect(&sound, &velmora::SoundPeaksReader::done, &sound, &QApplication::quit,
                     Qt::QueuedConnection);
    sound.read(file, engine.durationUs);
    QApplication::exec();
    const std::size_t bytes = sound.peaks().bytes() + keyFrames.size() * sizeof(keyFrames[0]);
    std::cout << millisecondsOf(timer) << ", " << bytes / 1024 << "]\n";
    return 0;
}

int addToJoiner(const QStringList& files) {
    Windows windows;
    QElapsedTimer timer;
    timer.start();
    for (const QString& file : files) {
        windows.controller().joinerAddFile(file);
    }
    std::cout << millisecondsOf(timer) << '\n';
    return 0;
}

int join(const QString& output, const QStringList& files) {
    Windows windows;
    for (const QString& file : files) {
        windows.controller().joinerAddFile(file);
    }
    velmora::sharedFileList = velmora::joinerFileList;
    QElapsedTimer timer;
    timer.start();
    velmora::ConverterThread::beginConverter({.fullPath = output, .isDirectly = 1});
    std::cout << millisecondsOf(timer) << '\n';
    return 0;
}

int probeAll(const QStringList& files) {
    ConversionEngine& engine = ConversionEngine::instance();
    QElapsedTimer timer;
    timer.start();
    for (const QString& file : files) {
        engine.probePath = file.toStdString();
        engine.probe();
    }
    std::cout << millisecondsOf(timer) << '\n';
    return 0;
}

int findKeys(const QString& file) {
    const velmora::StopFlag stop{0};
    QElapsedTimer timer;
    timer.start();
    velmora::mediaOperations().readKeyFrames(file.toStdString(), stop);
    std::cout << millisecondsOf(timer) << '\n';
    return 0;
}

/// -1: something else.
int runPictures(const QString& what, const QStringList& rest) {
    const QString file = rest.value(0);
    const int first = rest.value(1).toInt();
    if (what == "steps" && rest.size() == 3) {
        return velmora::bench::steps(file, first, rest[2].toInt());
    }
    if (what == "key-frames" && rest.size() == 2) {
        return velmora::bench::keyFrames(file, first);
    }
    if (what == "cold" && rest.size() == 3) {
        return velmora::bench::coldPictures(file, first, rest[2].toInt());
    }
    if (what == "drag" && rest.size() == 1) {
        return velmora::bench::drag(file);
    }
    if (what == "scrubbed" && rest.size() == 1) {
        return velmora::bench::scrubbedMemory(file);
    }
    return what == "find-keys" && rest.size() == 1 ? findKeys(file) : -1;
}

int run(const QString& what, const QStringList& rest) {
    if (what == "start") {
        return showMainWindow();
    }
    velmora::mediaOperations().setLogSink([](const char*) {}); // loads them: not part of the rest
    if (what == "load" && rest.size() == 1) {
        return load(rest[0]);
    }
    if (what == "engine" && rest.size() == 1) {
        return useEngine(rest[0]);
    }
    if (what == "scrub" && rest.size() == 3) {
        return scrub(rest[0], rest[1].toInt(), rest[2].toInt());
    }
    if (what == "memory" && rest.size() == 1) {
        return memory(rest[0]);
    }
    if (what == "timeline" && rest.size() == 1) {
        return findOut(rest[0]);
    }
    if (what == "add") {
        return addToJoiner(rest);
    }
    if (what == "join" && rest.size() > 1) {
        return join(rest[0], rest.mid(1));
    }
    if (what == "probe") {
        return probeAll(rest);
    }
    if (const int status = runPictures(what, rest); status >= 0) {
        return status;
    }
    std::cerr << "velmora-windows: unusable arguments\n";
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    ConversionEngine::instance();
    const QStringList arguments = QApplication::arguments();
    return run(arguments.value(1), arguments.mid(2));
}
