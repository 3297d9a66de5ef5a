#include "ConversionEngine.h"
#include "ConverterThread.h"
#include "JobsSupport.h"
#include "MediaReader.h"
#include "ProfileInfo.h"
#include "WholeTables.h"

#include <algorithm>
#include <map>
#include <set>

namespace velmora::test {
namespace {

const ProfileInfo& offered() {
    static const ProfileInfo profiles = ProfileInfo().initWithPath(":/profile.plist");
    return profiles;
}

/// What ffprobe calls the encoders.
const std::map<QString, std::string> kCodecs = {
    {"MPEG4", "mpeg4"}, {"H264", "h264"},  {"WMV2", "wmv2"}, {"FLV", "flv1"},
    {"MP3", "mp3"},     {"WMA8", "wmav2"}, {"AAC", "aac"},   {"VORBIS", "vorbis"}};

QString extensionOf(const QString& profileName) {
    return ConverterThread::getExt(profileName);
}

QStringList choicesOf(const Profile& profile, const QStringList& parameters) {
    QStringList choices;
    for (const QString& name : parameters) {
        choices += profile.parameter(name)->arrayValue.join(' ');
    }
    return choices;
}

/// Whether no earlier profile has the same choices for these parameters.
bool isFirstWith(const Profile& profile, const QStringList& parameters) {
    const QStringList choices = choicesOf(profile, parameters);
    const QStringList names = offered().getAllProfileName();
    const auto first = std::ranges::find_if(names, [&](const QString& name) {
        return choicesOf(*offered().getProfileByName(name), parameters) == choices;
    });
    return *first == *profile.name;
}

/// Each profile that the program ships is carried out by the real engine.
class ProfileChoices : public SharedStateTest, public testing::WithParamInterface<std::string> {
protected:
    ProfileChoices() {
        *currentSetting = NodeSetting().initWithDict(&profile_);
        addItem(mediaPath("h264.mp4"), 0, 250);
    }

    const ProfileParameter& parameter(const QString& name) const {
        return *std::ranges::find(profile_.setInfo, name, &ProfileParameter::name);
    }

    /// Re-encodes a quarter of a second with the current setting; the path of what comes out.
    std::string convert() {
        NodeSetting& setting = *currentSetting;
        setting.width = ConverterThread::getWidthFromResolution(setting.vResolution);
        setting.height = ConverterThread::getHeightFromResolution(setting.vResolution);
        const QString path = output("out." + extensionOf(*profile_.name).toStdString());
        ConverterThread::beginConverter({.fullPath = path, .isDirectly = 0, .isCutter = 1});
        EXPECT_EQ(ConversionEngine::instance().fileStates[0], ConversionEngine::Done)
            << described().toStdString();
        return path.toStdString();
    }

    static QString described() {
        const NodeSetting& setting = *currentSetting;
        return QStringList{setting.vResolution, setting.vBitrate, setting.vFrameRate,
                           setting.aSamplerate, setting.aBitrate, setting.aChannels}
            .join(' ');
    }

    static void expectAsSet(const std::string& path) {
        SCOPED_TRACE(described().toStdString());
        const NodeSetting& setting = *currentSetting;
        const auto facts = ffprobeJson(path, {"-show_streams", "-show_packets"});
        const auto& streams = facts.at("streams");
        ASSERT_EQ(streams.size(), 2U);
        const auto& video = streams[0].at("codec_type") == "video" ? streams[0] : streams[1];
        const auto& audio = streams[0].at("codec_type") == "video" ? streams[1] : streams[0];
        EXPECT_EQ(video.at("codec_name"), kCodecs.at(setting.vEncoder));
        EXPECT_EQ(video.at("width"), setting.width);
        EXPECT_EQ(video.at("height"), setting.height);
        EXPECT_EQ(audio.at("codec_name"), kCodecs.at(setting.aEncoder));
        EXPECT_EQ(audio.at("sample_rate"), setting.aSamplerate.toStdString());
        EXPECT_EQ(audio.at("channels"), setting.aChannels.toInt());
        expectRate(facts.at("packets"), video, setting.vFrameRate.toDouble());
    }

    /// Looks at the time from the second picture to the last. The first may be longer: an avi file
    /// waits so for its sound, which begins with what the MP3 encoder adds. No encoder reorders the
    /// pictures, so either of their times will do.
    static void expectRate(const nlohmann::json& packets, const nlohmann::json& video,
                           double picturesPerSecond) {
        std::vector<std::int64_t> times; // ticks
        for (const auto& packet : packets) {
            if (packet.at("stream_index") == video.at("index")) {
                times.push_back(packet.at(packet.contains("dts") ? "dts" : "pts"));
            }
        }
        ASSERT_GE(times.size(), 3U);
        const auto timeBase = QString::fromStdString(video.at("time_base")).split('/');
        const double ticksPerPicture =
            timeBase[1].toDouble() / timeBase[0].toDouble() / picturesPerSecond;
        // A tick of a container may be a millisecond.
        const double tolerance = 1.0 + 0.005 * ticksPerPicture;
        EXPECT_NEAR(static_cast<double>(times.back() - times[1]),
                    static_cast<double>(times.size() - 2) * ticksPerPicture, tolerance);
    }

    const Profile& profile_ = *offered().getProfileByName(QString::fromStdString(GetParam()));
};

TEST_P(ProfileChoices, defaults_work) {
    expectAsSet(convert());
    EXPECT_TRUE(ffmpegDecodesClean(folder_ / ("out." + extensionOf(*profile_.name).toStdString())));
}

// Round k takes the k-th choice of every parameter, so each choice is taken at least once. An
// encoder makes pictures of the same sizes for every container, so they are small for all but the
// first.
TEST_P(ProfileChoices, everyChoice_works) {
    const bool takesAllSizes =
        wholeTables() || isFirstWith(profile_, {"vEncoder", "vResolution", "vBitRate"});
    qsizetype rounds = 0;
    for (const ProfileParameter& each : profile_.setInfo) {
        rounds = std::max(rounds, each.arrayValue.size());
    }
    for (qsizetype round = 0; round < rounds; ++round) {
        Profile chosen = profile_;
        for (ProfileParameter& each : chosen.setInfo) {
            const bool staysSmall = each.name == "vResolution" && !takesAllSizes;
            each.index = static_cast<std::int32_t>(staysSmall ? 0 : round % each.arrayValue.size());
        }
        currentSetting->initWithDict(&chosen);
        expectAsSet(convert());
    }
}

/// Profiles of which no earlier one has the same choices for sound.
class SoundChoices : public ProfileChoices {};

// What an encoder of sound takes depends on all three together.
TEST_P(SoundChoices, everyCombination_works) {
    currentSetting->vResolution = parameter("vResolution").arrayValue.first();
    sharedFileList->front()->endTime = 200;
    for (const QString& rate : parameter("aSamplerate").arrayValue) {
        for (const QString& bitRate : parameter("aBitRate").arrayValue) {
            for (const QString& channels : parameter("channel").arrayValue) {
                currentSetting->aSamplerate = rate;
                currentSetting->aBitrate = bitRate;
                currentSetting->aChannels = channels;
                convert();
            }
        }
    }
}

std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const QString& name : offered().getAllProfileName()) {
        all.push_back(name.toStdString());
    }
    return all;
}

std::vector<std::string> namesWithSoundOfTheirOwn() {
    std::vector<std::string> all = names();
    std::erase_if(all, [](const std::string& name) {
        const Profile& profile = *offered().getProfileByName(QString::fromStdString(name));
        return !wholeTables() &&
               !isFirstWith(profile, {"aEncoder", "aSamplerate", "aBitRate", "channel"});
    });
    return all;
}

INSTANTIATE_TEST_SUITE_P(All, ProfileChoices, testing::ValuesIn(names()),
                         [](const auto& made) { return asTestName(made.param); });
INSTANTIATE_TEST_SUITE_P(All, SoundChoices, testing::ValuesIn(namesWithSoundOfTheirOwn()),
                         [](const auto& made) { return asTestName(made.param); });

class OfferedProfiles : public testing::Test {
protected:
    std::vector<const Profile*> all_ = [] {
        std::vector<const Profile*> all;
        for (const QString& name : offered().getAllProfileName()) {
            all.push_back(offered().getProfileByName(name));
        }
        return all;
    }();
};

TEST_F(OfferedProfiles, namesAndIds_areUnique) {
    std::set<QString> names;
    std::set<std::int32_t> ids;
    for (const Profile* profile : all_) {
        EXPECT_TRUE(names.insert(*profile->name).second) << profile->name->toStdString();
        EXPECT_TRUE(ids.insert(profile->index.value()).second) << profile->name->toStdString();
    }
}

TEST_F(OfferedProfiles, parameters_areAllThereWithADefaultAmongTheChoices) {
    const std::set<QString> expected{"vEncoder", "vResolution", "vBitRate", "vFrameRate",
                                     "aEncoder", "aSamplerate", "aBitRate", "channel"};
    for (const Profile* profile : all_) {
        std::set<QString> found;
        for (const ProfileParameter& parameter : profile->setInfo) {
            found.insert(parameter.name);
            EXPECT_EQ(parameter.index, parameter.position()) << profile->name->toStdString();
            EXPECT_FALSE(parameter.choice().isEmpty()) << profile->name->toStdString();
            EXPECT_EQ(
                std::set<QString>(parameter.arrayValue.begin(), parameter.arrayValue.end()).size(),
                static_cast<std::size_t>(parameter.arrayValue.size()));
        }
        EXPECT_EQ(found, expected) << profile->name->toStdString();
    }
}

TEST_F(OfferedProfiles, containersAndEncoders_areTheKnownPairs) {
    std::set<QString> pairs;
    for (const Profile* profile : all_) {
        const NodeSetting setting = NodeSetting().initWithDict(profile);
        pairs.insert(extensionOf(*profile->name) + ' ' + setting.vEncoder + ' ' + setting.aEncoder);
    }
    EXPECT_EQ(pairs, (std::set<QString>{"mp4 H264 AAC", "m4v H264 AAC", "mov H264 AAC",
                                        "mkv H264 AAC", "flv H264 AAC", "3gp H264 AAC",
                                        "ts H264 AAC", "avi MPEG4 MP3", "mp4 MPEG4 MP3",
                                        "wmv WMV2 WMA8", "flv FLV MP3", "mkv H264 VORBIS"}));
    EXPECT_EQ(NodeSetting().initWithDict(all_.front()).vEncoder, "H264");
    EXPECT_EQ(extensionOf(*all_.front()->name), "mp4");
}

} // namespace
} // namespace velmora::test
