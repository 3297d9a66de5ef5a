#include "SettingControler.h"

#include "JobsSupport.h"
#include "ModalSession.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>

namespace velmora::test {
namespace {

using Act = std::function<void(QWidget& window)>;

/// A parameter with the choices <letter>1, <letter>2 and <letter>3.
std::string parameter(const std::string& name, const std::string& letter, int index) {
    std::string choices;
    for (const char* const number : {"1", "2", "3"}) {
        choices += "<string>" + letter + number + "</string>";
    }
    return "<dict><key>name</key><string>" + name + "</string><key>arrayValue</key><array>" +
           choices + "</array><key>index</key><integer>" + std::to_string(index) +
           "</integer></dict>";
}

/// The editor over a profile "p" with defaults at several positions.
class SettingControlerTest : public SharedStateTest {
protected:
    SettingControlerTest() {
        const std::string parameters =
            parameter("vEncoder", "ve", 1) + parameter("vResolution", "vr", 9) +
            parameter("vBitRate", "vb", -1) + parameter("vFrameRate", "vf", 2) +
            parameter("aEncoder", "ae", 0) + parameter("aSamplerate", "as", 1) +
            parameter("aBitRate", "ab", 2) + parameter("channel", "ch", 1) +
            parameter("vBitrate", "xx", 0) + parameter("channels", "yy", 0);
        writeFile(folder_.path() / "profile.plist",
                  R"(<?xml version="1.0"?><plist version="1.0"><array><dict><key>name</key>)"
                  "<string>p</string><key>setInfo</key><array>" +
                      parameters + "</array></dict></array></plist>");
        editorProfileStore = std::make_shared<ProfileInfo>();
        editorProfileStore->initWithPath(output("profile.plist"));
        currentSetting->profileName = "p";
        currentSetting->isDefautValue = 1;
    }
    ~SettingControlerTest() override { editorProfileStore.reset(); }

    /// Opens the editor and lets `act` go on in its window, which it has to close.
    bool open(const Act& act) {
        QTimer::singleShot(0, [this, act] {
            window_ = modalWindow();
            ASSERT_NE(window_, nullptr);
            act(*window_);
            EXPECT_EQ(modalWindow(), nullptr);
            stopModal();
        });
        return editor_.showSettingFrom();
    }
    static QComboBox& box(QWidget& window, const char* name) {
        return *window.findChild<QComboBox*>(name);
    }
    /// What the boxes show, video first.
    static QStringList shown(QWidget& window) {
        QStringList all;
        for (const char* const name : kBoxes) {
            all.append(box(window, name).currentText());
        }
        return all;
    }
    static QStringList stored() {
        const NodeSetting& setting = *currentSetting;
        return {setting.vEncoder, setting.vResolution, setting.vBitrate, setting.vFrameRate,
                setting.aEncoder, setting.aSamplerate, setting.aBitrate, setting.aChannels};
    }
    static void press(QWidget& window, const char* button) {
        QTest::mouseClick(window.findChild<QPushButton*>(button), Qt::LeftButton);
    }

    static constexpr std::array kBoxes = {"comVEncoder",   "comVResolution", "comVBitrate",
                                          "comVFrameRate", "comAEncoder",    "comASamplerate",
                                          "comABitrate",   "comAChannels"};
    const QStringList defaults_{"ve2", "vr1", "vb1", "vf3", "ae1", "as2", "ab3", "ch2"};

    SettingControler editor_;
    QWidget* window_ = nullptr;
};

TEST_F(SettingControlerTest, open_showsTheProfilesChoicesAndDefaults) {
    const LogLines lines;
    open([this](QWidget& window) {
        EXPECT_EQ(window.objectName(), "SettingFrom");
        EXPECT_EQ(window.findChild<QLabel*>("proName")->text(), "p");
        EXPECT_EQ(shown(window), defaults_);
        for (const char* const name : kBoxes) {
            EXPECT_EQ(box(window, name).count(), 3) << name;
        }
        EXPECT_EQ(box(window, "comVBitrate").itemText(2), "vb3");
        press(window, "btCancel");
    });
    EXPECT_TRUE(lines.all().contains("test show setting"));
}

TEST_F(SettingControlerTest, open_defaultsInForce_ignoresTheSettingsOwnValues) {
    currentSetting->vFrameRate = "vf1";
    open([this](QWidget& window) {
        EXPECT_EQ(shown(window), defaults_);
        press(window, "btCancel");
    });
}

TEST_F(SettingControlerTest, open_changedSetting_showsItsValuesAndElseTheDefaults) {
    currentSetting->isDefautValue = 0;
    currentSetting->vFrameRate = "vf1";
    currentSetting->aEncoder = "ae3";
    currentSetting->aChannels = "CH1";
    currentSetting->vBitrate = "other";
    open([](QWidget& window) {
        EXPECT_EQ(shown(window),
                  QStringList({"ve2", "vr1", "vb1", "vf1", "ae3", "as2", "ab3", "ch2"}));
        press(window, "btCancel");
    });
}

TEST_F(SettingControlerTest, ok_storesWhatIsSelectedAndNothingElse) {
    currentSetting->width = 5;
    currentSetting->height = 6;
    const bool confirmed = open([](QWidget& window) {
        for (const char* const name : kBoxes) {
            QTest::keyClick(&box(window, name), Qt::Key_End);
        }
        press(window, "btOK");
        EXPECT_FALSE(window.isVisible());
    });
    EXPECT_TRUE(confirmed);
    EXPECT_EQ(stored(), QStringList({"ve3", "vr3", "vb3", "vf3", "ae3", "as3", "ab3", "ch3"}));
    EXPECT_EQ(currentSetting->isDefautValue, 1);
    EXPECT_EQ(currentSetting->width, 5);
    EXPECT_EQ(currentSetting->height, 6);
    EXPECT_EQ(currentSetting->profileName, "p");
}

TEST_F(SettingControlerTest, ok_nothingSelected_storesAnEmptyText) {
    currentSetting->vEncoder = "before";
    open([](QWidget& window) {
        box(window, "comVEncoder").setCurrentIndex(-1);
        press(window, "btOK");
    });
    EXPECT_EQ(currentSetting->vEncoder, "");
    EXPECT_EQ(currentSetting->aEncoder, "ae1");
}

TEST_F(SettingControlerTest, cancelCloseBoxAndEscape_leaveTheSettingAsItWas) {
    currentSetting->vEncoder = "before";
    const std::vector<Act> ways = {
        [](QWidget& window) { press(window, "btCancel"); }, [](QWidget& window) { window.close(); },
        [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); }};
    for (const Act& way : ways) {
        EXPECT_FALSE(open([&way](QWidget& window) {
            QTest::keyClick(&box(window, "comVBitrate"), Qt::Key_End);
            way(window);
            EXPECT_FALSE(window.isVisible());
        }));
        EXPECT_EQ(stored(), QStringList({"before", "", "", "", "", "", "", ""}));
    }
}

TEST_F(SettingControlerTest, default_selectsTheDefaultsAndStoresNothing) {
    currentSetting->isDefautValue = 0;
    currentSetting->vFrameRate = "vf1";
    const QStringList before = stored();
    open([this, &before](QWidget& window) {
        for (const char* const name : kBoxes) {
            QTest::keyClick(&box(window, name), Qt::Key_Home);
        }
        press(window, "btDefault");
        EXPECT_EQ(shown(window), defaults_);
        EXPECT_EQ(stored(), before);
        press(window, "btCancel");
    });
    EXPECT_EQ(stored(), before);
}

TEST_F(SettingControlerTest, default_profileUnknownByThen_changesTheNameOnly) {
    open([](QWidget& window) {
        for (const char* const name : kBoxes) {
            QTest::keyClick(&box(window, name), Qt::Key_End);
        }
        const QStringList before = shown(window);
        currentSetting->profileName = "unknown";
        press(window, "btDefault");
        EXPECT_EQ(window.findChild<QLabel*>("proName")->text(), "unknown");
        EXPECT_EQ(shown(window), before);
        for (const char* const name : kBoxes) {
            EXPECT_EQ(box(window, name).count(), 3) << name;
        }
        press(window, "btCancel");
    });
}

TEST_F(SettingControlerTest, defaultThenOk_storesTheDefaults) {
    open([](QWidget& window) {
        QTest::keyClick(&box(window, "comVBitrate"), Qt::Key_End);
        press(window, "btDefault");
        press(window, "btOK");
    });
    EXPECT_EQ(stored(), defaults_);
}

TEST_F(SettingControlerTest, profile_unknown_leavesTheBoxesEmptyAndOkStoresThat) {
    currentSetting->profileName = "unknown";
    for (const bool storeExists : {true, false}) {
        if (!storeExists) {
            editorProfileStore.reset();
        }
        currentSetting->vEncoder = "before";
        currentSetting->isDefautValue = 0;
        open([](QWidget& window) {
            EXPECT_EQ(window.findChild<QLabel*>("proName")->text(), "unknown");
            for (const char* const name : kBoxes) {
                EXPECT_EQ(box(window, name).count(), 0) << name;
            }
            press(window, "btDefault");
            press(window, "btOK");
        });
        EXPECT_EQ(stored(), QStringList({"", "", "", "", "", "", "", ""}));
    }
}

TEST_F(SettingControlerTest, open_again_usesTheSameWindowAndFillsItAnew) {
    QWidget* first = nullptr;
    open([&first](QWidget& window) {
        first = &window;
        QTest::keyClick(&box(window, "comVBitrate"), Qt::Key_End);
        press(window, "btCancel");
    });
    open([this, first](QWidget& window) {
        EXPECT_EQ(&window, first);
        EXPECT_EQ(shown(window), defaults_);
        EXPECT_EQ(box(window, "comVBitrate").count(), 3);
        press(window, "btCancel");
    });
}

TEST_F(SettingControlerTest, windowShouldClose_endsTheSessionAndAgrees) {
    open([this](QWidget& window) {
        EXPECT_TRUE(editor_.windowShouldClose());
        EXPECT_TRUE(window.isVisible());
    });
}

TEST_F(SettingControlerTest, keys_returnConfirmsAndTabGoesDownBothColumns) {
    const bool confirmed = open([](QWidget& window) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        box(window, kBoxes[0]).setFocus();
        for (std::size_t i = 0; i < kBoxes.size(); ++i) {
            EXPECT_EQ(window.focusWidget()->objectName(), kBoxes[i]);
            QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        }
        box(window, "comAEncoder").setFocus();
        QTest::keyClick(window.focusWidget(), Qt::Key_Return);
    });
    EXPECT_TRUE(confirmed);
}

TEST_F(SettingControlerTest, widgets_haveAccessibleNames) {
    open([](QWidget& window) {
        for (const char* const name : kBoxes) {
            EXPECT_FALSE(box(window, name).accessibleName().isEmpty()) << name;
        }
        for (const QPushButton* const button : window.findChildren<QPushButton*>()) {
            EXPECT_FALSE(button->accessibleName().isEmpty());
        }
        press(window, "btCancel");
    });
}

} // namespace
} // namespace velmora::test
