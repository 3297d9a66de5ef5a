#include "ControllerSupport.h"

#include <QTest>

#include <stdexcept>

namespace velmora::test {

ControllerTest::ControllerTest() {
    setCounters(-1, 0, 0);
    engine_.stopRequested = 0;
}

void ControllerTest::show(ConverterController& controller, const ConverterInfo& job,
                          const std::function<void()>& inside) {
    if (inside) {
        QTimer::singleShot(0, &controller, inside);
    }
    controller.showConverterFrom(job);
}

ConverterInfo ControllerTest::directJob(const std::string& name, int isCutter) const {
    return {.fullPath = output(name), .isDirectly = 1, .isCutter = isCutter};
}

ConverterInfo ControllerTest::slowJob(const std::string& name, int width, int height) const {
    NodeSetting& setting = *currentSetting;
    setting.vEncoder = "H264";
    setting.vBitrate = "4000";
    setting.vFrameRate = "30";
    setting.aEncoder = "AAC";
    setting.aBitrate = "128";
    setting.aSamplerate = "44100";
    setting.aChannels = "2";
    setting.width = width;
    setting.height = height;
    return {.fullPath = output(name), .isDirectly = 0, .isCutter = 1};
}

QWidget& ControllerTest::windowOf(const ConverterController& controller) {
    for (QWidget* window = controller.totleProgress(); window != nullptr;
         window = window->parentWidget()) {
        if (window->isWindow()) {
            return *window;
        }
    }
    throw std::logic_error("there is no progress window");
}

QString ControllerTest::textOf(const ConverterController& controller, const char* label) {
    return windowOf(controller).findChild<QLabel*>(label)->text();
}

bool ControllerTest::isRefreshing(const ConverterController& controller) {
    return controller.findChild<QTimer*>("refreshTimer")->isActive();
}

void ControllerTest::setCounters(int index, int count, int percent,
                                 const std::vector<int>& states) {
    engine_.currentIndex = index;
    engine_.jobCount = count;
    engine_.currentPercent = percent;
    for (auto& state : engine_.fileStates) {
        state = ConversionEngine::Pending;
    }
    for (std::size_t i = 0; i < states.size(); ++i) {
        engine_.fileStates[i] = static_cast<std::uint8_t>(states[i]);
    }
}

bool ControllerTest::waitForAlerts(qsizetype count) const {
    return QTest::qWaitFor([&] { return alerts_.messages.size() >= count; }, 60000);
}

} // namespace velmora::test
