#pragma once

#include "AlertReader.h"
#include "ConversionEngine.h"
#include "ConverterController.h"
#include "JobsSupport.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include <functional>

namespace velmora::test {

inline const QString kCompleted = "Congratulations! file has completed!";
inline const QString kFailed = "File failed! please use re-encoding mode";

/// A test with a progress window, whose alerts are answered.
class ControllerTest : public SharedStateTest {
protected:
    ControllerTest();

    /// Runs a job over the shared list, and `inside` when the window is on screen.
    static void show(ConverterController& controller, const ConverterInfo& job,
                     const std::function<void()>& inside = {});
    /// Cuts or joins by copying packets.
    ConverterInfo directJob(const std::string& name, int isCutter = 1) const;
    /// Re-encodes to pictures of this size; the larger, the slower.
    ConverterInfo slowJob(const std::string& name, int width, int height) const;

    /// The window of a controller; fails the test when there is none.
    static QWidget& windowOf(const ConverterController& controller);
    static QString textOf(const ConverterController& controller, const char* label);
    static bool isRefreshing(const ConverterController& controller);
    /// Sets the counters as a run would; states that are not given are pending.
    void setCounters(int index, int count, int percent, const std::vector<int>& states = {});
    /// Lets events be handled until so many alerts have been answered.
    bool waitForAlerts(qsizetype count) const;

    ConversionEngine& engine_ = ConversionEngine::instance();
    AlertReader alerts_;
};

/// The same with one controller.
class ConverterControllerTest : public ControllerTest {
protected:
    /// Three items named one, two and three, without a run.
    void addThree() {
        for (const char* name : {"/a/one.mp4", "/a/two.mp4", "/a/three.mp4"}) {
            addItem(name, 0, 1000).isSeleted = 1;
        }
    }
    NodeInfo& item(std::size_t index) { return *sharedFileList->at(index); }
    std::vector<int> states() const {
        std::vector<int> all;
        for (const auto& each : *sharedFileList) {
            all.push_back(each->converteState);
        }
        return all;
    }

    ConverterController controller_;
};

} // namespace velmora::test
