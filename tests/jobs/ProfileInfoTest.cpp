#include "ProfileInfo.h"
#include "NodeSetting.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {
namespace {

std::string asPropertyList(const std::string& root) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)" + root + "</plist>";
}

std::string integer(const std::string& key, int value) {
    return "<key>" + key + "</key><integer>" + std::to_string(value) + "</integer>";
}

std::string text(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><string>" + value + "</string>";
}

/// A parameter with the choices a, b and c.
std::string parameter(const std::string& name, int index) {
    return "<dict>" + text("name", name) +
           "<key>arrayValue</key><array><string>a</string><string>b</string><string>c</string>"
           "</array>" +
           integer("index", index) + "</dict>";
}

std::string profile(int index, const std::string& name, const std::string& parameters) {
    return "<dict>" + integer("index", index) + text("name", name) + "<key>setInfo</key><array>" +
           parameters + "</array></dict>";
}

class ProfileInfoTest : public ::testing::Test {
protected:
    ProfileInfo& load(const std::string& root) { return loadFile(asPropertyList(root)); }
    ProfileInfo& loadFile(const std::string& content) {
        writeFile(folder_.path() / "profile.plist", content);
        return store_.initWithPath(QString::fromStdString(folder_ / "profile.plist"));
    }
    /// The setting that the first profile of the store gives.
    NodeSetting firstSetting() const {
        return NodeSetting().initWithDict(store_.getProfileByName("p"));
    }

    TemporaryFolder folder_;
    ProfileInfo store_;
};

TEST_F(ProfileInfoTest, getAllProfileName_profilesInFile_givesNamesInOrderWithoutTheUnnamed) {
    load("<array>" + profile(2, "second", "") + "<dict>" + integer("index", 7) + "</dict>" +
         profile(1, "first é &amp; more", "") + "</array>");
    EXPECT_EQ(store_.getAllProfileName(), (QStringList{"second", "first é & more"}));
}

TEST_F(ProfileInfoTest, parameter_sameNameTwice_isTheFirst) {
    load("<array>" + profile(1, "p", parameter("x", 0) + parameter("y", 1) + parameter("y", 2)) +
         "</array>");
    const Profile* const loaded = store_.getProfileByName("p");
    ASSERT_NE(loaded, nullptr);
    ASSERT_NE(loaded->parameter("y"), nullptr);
    EXPECT_EQ(loaded->parameter("y")->choice(), "b");
    EXPECT_EQ(loaded->parameter("z"), nullptr);
}

TEST_F(ProfileInfoTest, getProfileByName_sameNameTwice_givesTheFirst) {
    load("<array>" + profile(1, "p", "") + profile(2, "p", "") + "</array>");
    EXPECT_EQ(store_.getProfileByName("p")->index, 1);
}

TEST_F(ProfileInfoTest, getProfileByName_otherSpelling_givesNone) {
    load("<array>" + profile(1, "p", "") + "<dict>" + integer("index", 2) + "</dict></array>");
    EXPECT_EQ(store_.getProfileByName("P"), nullptr);
    EXPECT_EQ(store_.getProfileByName("p "), nullptr);
    EXPECT_EQ(store_.getProfileByName(""), nullptr);
}

TEST_F(ProfileInfoTest, getProfileByID_ids_findsTheFirstThatHasIt) {
    load("<array><dict>" + text("name", "without id") + "</dict>" + profile(3, "three", "") +
         profile(3, "hidden", "") + profile(0, "zero", "") + "</array>");
    EXPECT_EQ(store_.getProfileByID(3)->name, "three");
    EXPECT_EQ(store_.getProfileByID(0)->name, "zero");
    EXPECT_EQ(store_.getProfileByID(4), nullptr);
}

TEST_F(ProfileInfoTest, initWithPath_secondFile_replacesTheFirst) {
    load("<array>" + profile(1, "p", "") + "</array>");
    load("<array>" + profile(1, "q", "") + "</array>");
    EXPECT_EQ(store_.getAllProfileName(), QStringList{"q"});
    store_.initWithPath(QString::fromStdString(folder_ / "none.plist"));
    EXPECT_EQ(store_.getAllProfileName(), QStringList());
}

TEST_F(ProfileInfoTest, initWithPath_filesThatAreNoProfiles_giveAnEmptyStore) {
    for (const std::string& content :
         {std::string(), std::string("no property list"), std::string("bplist00"),
          asPropertyList(""), asPropertyList("<dict>" + text("name", "p") + "</dict>"),
          asPropertyList("<string>p</string>"), asPropertyList("<array>" + profile(1, "p", "")),
          asPropertyList("<array><string>p</string><array/><integer>1</integer></array>")}) {
        loadFile(content);
        EXPECT_TRUE(store_.getAllProfileName().isEmpty()) << content;
        EXPECT_EQ(store_.getProfileByName("p"), nullptr) << content;
        EXPECT_EQ(store_.getProfileByID(1), nullptr) << content;
    }
}

TEST_F(ProfileInfoTest, initWithPath_valuesOfOtherTypes_countAsAbsent) {
    load("<array><dict><key>index</key><string>1</string><key>name</key><integer>5</integer>"
         "<key>setInfo</key><string>none</string></dict>"
         "<dict>" +
         text("name", "p") +
         "<key>setInfo</key><array><string>x</string><dict><key>name</key><true/></dict>"
         "<dict>" +
         text("name", "vEncoder") +
         "<key>arrayValue</key><array><integer>5</integer><string>b</string></array>"
         "<key>index</key><real>1.9</real></dict>"
         "<dict>" +
         text("name", "aEncoder") +
         "<key>arrayValue</key><string>a</string></dict></array></dict></array>");
    EXPECT_EQ(store_.getAllProfileName(), QStringList{"p"});
    EXPECT_EQ(store_.getProfileByID(1), nullptr);
    EXPECT_EQ(firstSetting().vEncoder, "b");
    EXPECT_EQ(firstSetting().aEncoder, "");
}

TEST_F(ProfileInfoTest, initWithDict_allParameters_fillTheirFields) {
    const QStringList names{"vEncoder", "vResolution", "vBitRate", "vFrameRate",
                            "aEncoder", "aSamplerate", "aBitRate", "channel"};
    std::string parameters;
    for (const QString& name : names) {
        parameters += "<dict>" + text("name", name.toStdString()) +
                      "<key>arrayValue</key><array><string>no</string><string>" +
                      name.toStdString() + "</string></array>" + integer("index", 1) + "</dict>";
    }
    load("<array>" + profile(9, "p", parameters) + "</array>");

    const NodeSetting setting = firstSetting();
    EXPECT_EQ(setting.defineType, 9);
    EXPECT_EQ(setting.profileName, "p");
    EXPECT_EQ(
        (QStringList{setting.vEncoder, setting.vResolution, setting.vBitrate, setting.vFrameRate,
                     setting.aEncoder, setting.aSamplerate, setting.aBitrate, setting.aChannels}),
        names);
}

TEST_F(ProfileInfoTest, initWithDict_indexOutsideOfTheChoices_takesTheFirst) {
    load("<array>" +
         profile(1, "p",
                 parameter("vEncoder", 7) + parameter("aEncoder", -1) + parameter("vBitRate", 3) +
                     parameter("aBitRate", 2)) +
         "</array>");
    EXPECT_EQ(firstSetting().vEncoder, "a");
    EXPECT_EQ(firstSetting().aEncoder, "a");
    EXPECT_EQ(firstSetting().vBitrate, "a");
    EXPECT_EQ(firstSetting().aBitrate, "c");
}

TEST_F(ProfileInfoTest, initWithDict_otherParameterNames_areIgnored) {
    load("<array>" +
         profile(1, "p",
                 parameter("vBitrate", 0) + parameter("channels", 0) + parameter("VENCODER", 0)) +
         "</array>");
    EXPECT_EQ(firstSetting().vBitrate, "");
    EXPECT_EQ(firstSetting().aChannels, "");
    EXPECT_EQ(firstSetting().vEncoder, "");
}

TEST_F(ProfileInfoTest, initWithDict_noChoices_leaveTheFieldEmpty) {
    load("<array>" +
         profile(1, "p",
                 "<dict>" + text("name", "vEncoder") + "<key>arrayValue</key><array/></dict>") +
         "</array>");
    EXPECT_EQ(firstSetting().vEncoder, "");
}

TEST_F(ProfileInfoTest, initWithDict_noSetInfo_setsOnlyIdAndName) {
    load("<array><dict>" + integer("index", 4) + text("name", "p") + "</dict></array>");
    NodeSetting setting;
    setting.vEncoder = "H264";
    setting.isDefautValue = 1;
    setting.width = 640;
    setting.cutStartTime = 5;
    EXPECT_EQ(&setting.initWithDict(store_.getProfileByName("p")), &setting);
    EXPECT_EQ(setting.defineType, 4);
    EXPECT_EQ(setting.profileName, "p");
    EXPECT_EQ(setting.vEncoder, "H264");
    EXPECT_EQ(setting.isDefautValue, 1);
    EXPECT_EQ(setting.width, 640);
    EXPECT_EQ(setting.cutStartTime, 5.0F);
}

TEST_F(ProfileInfoTest, initWithDict_noProfile_clearsIdAndNameOnly) {
    NodeSetting setting;
    setting.defineType = 3;
    setting.profileName = "p";
    setting.aEncoder = "AAC";
    setting.initWithDict(nullptr);
    EXPECT_EQ(setting.defineType, 0);
    EXPECT_EQ(setting.profileName, "");
    EXPECT_EQ(setting.aEncoder, "AAC");
}

TEST(NodeSettingTest, newSetting_isZeroAndEmpty) {
    const NodeSetting setting;
    EXPECT_EQ(setting.defineType, 0);
    EXPECT_EQ(setting.isDefautValue, 0);
    EXPECT_EQ(setting.isMerge, 0);
    EXPECT_FALSE(setting.imCut || setting.imJoin || setting.isDirectlyConvert);
    EXPECT_EQ(setting.width, 0);
    EXPECT_EQ(setting.height, 0);
    EXPECT_EQ(setting.cutStartTime, 0.0F);
    EXPECT_EQ(setting.cutEndTime, 0.0F);
    EXPECT_EQ(setting.profileName + setting.vEncoder + setting.vResolution + setting.vFrameRate +
                  setting.vBitrate + setting.aEncoder + setting.aSamplerate + setting.aBitrate +
                  setting.aChannels,
              "");
}

} // namespace
} // namespace velmora::test
