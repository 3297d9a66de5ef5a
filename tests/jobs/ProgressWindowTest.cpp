#include "ControllerSupport.h"

#include <QTest>

namespace velmora::test {
namespace {

TEST_F(ConverterControllerTest, window_hasItsOutletsWithNames) {
    controller_.refreshProgree();
    const QWidget& window = windowOf(controller_);
    EXPECT_EQ(window.objectName(), "ConverterFrom");
    EXPECT_FALSE(window.toolTip().isEmpty());
    EXPECT_EQ(window.findChild<QPushButton*>("btCancel")->text(), "Cancel");
    for (const char* name :
         {"singleTxt", "totleTxt", "singleProgress", "totleProgress", "btCancel"}) {
        const auto* widget = window.findChild<QWidget*>(name);
        ASSERT_NE(widget, nullptr) << name;
        EXPECT_TRUE(!widget->accessibleName().isEmpty() || widget->inherits("QLabel")) << name;
    }
    EXPECT_EQ(controller_.singleProgress()->maximum(), 100);
    EXPECT_EQ(controller_.totleProgress()->maximum(), 100);
}

TEST_F(ConverterControllerTest, window_longName_needsNoMoreRoom) {
    addItem("/a/" + std::string(250, 'w') + ".mp4", 0, 1);
    setCounters(0, 1, 5);
    controller_.refreshProgree();
    EXPECT_LT(windowOf(controller_).sizeHint().width(), 600);
    EXPECT_LT(windowOf(controller_).minimumSizeHint().width(), 600);
}

TEST_F(ConverterControllerTest, bars_ofAnotherWindow_areShownInstead) {
    QProgressBar single;
    QProgressBar total;
    controller_.setSingleProgress(&single);
    controller_.setTotleProgress(&total);
    EXPECT_EQ(controller_.singleProgress(), &single);
    EXPECT_EQ(controller_.totleProgress(), &total);
}

} // namespace
} // namespace velmora::test
