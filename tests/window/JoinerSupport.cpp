#include "JoinerSupport.h"

#include <memory>

namespace velmora::test {

void JoinerTest::SetUp() {
    show("Video Joiner");
    log_.clear();
}

void JoinerTest::addRow(const QString& format, const QString& resolution) {
    auto item = std::make_shared<NodeInfo>();
    item->inputFile = "/videos/a." + format;
    item->inFromat = format;
    item->outFromat = format;
    item->resolution = resolution;
    item->isSeleted = 1;
    joinerFileList->push_back(item);
}

QString JoinerTest::cell(int row, int column) {
    return table().model()->index(row, column).data().toString();
}

QString JoinerTest::value(const char* column, int row) {
    return controller_.tableViewObjectValueForTableColumn(column, row).toString();
}

bool JoinerTest::merge(const std::function<void(QWidget&)>& inPanel) {
    const InNextPanel panel(inPanel);
    press("mButtonJoinerSetting");
    return panel.hasOpened();
}

} // namespace velmora::test
