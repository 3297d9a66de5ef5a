#include "ProgramColours.h"

#include "PrimaryButton.h"

#include <QImage>
#include <QPushButton>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(ProgramColoursTest, styleSheet_hasColoursWhereItNamesThem) {
    EXPECT_EQ(withProgramColours("a{color:@ink;background:@accent}"),
              "a{color:#12324a;background:#1f6fb2}");
}

TEST(ProgramColoursTest, namesThatBeginAlike_areKeptApart) {
    EXPECT_EQ(withProgramColours("@accent-hovered @accent-pressed @accent"),
              "#1a619d #155084 #1f6fb2");
}

TEST(ProgramColoursTest, primaryButton_isDrawnInTheAccentColour) {
    QPushButton button;
    makePrimary(button);
    button.resize(80, 40);
    const QImage picture = button.grab().toImage();
    EXPECT_EQ(picture.pixelColor(10, 20), kAccent);
    button.setDown(true);
    EXPECT_EQ(button.grab().toImage().pixelColor(10, 20), kAccentPressed);
}

} // namespace
} // namespace velmora::test
