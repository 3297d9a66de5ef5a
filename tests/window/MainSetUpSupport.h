#pragma once

#include "MainWindowSupport.h"
#include "SharedState.h"

#include <QStackedWidget>

#include <memory>

namespace velmora::test {

/// The main window as it stands after its start.
class MainSetUpTest : public MainWindowTest {
protected:
    QWidget* workspace() { return outlet<QStackedWidget>("curView").currentWidget(); }

    static void addItem(const std::shared_ptr<FileList>& list) {
        list->push_back(std::make_shared<NodeInfo>());
    }
};

} // namespace velmora::test
