#include "PanelSupport.h"

namespace velmora::test {
namespace {

std::string element(const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">";
}

std::string entry(const std::string& key, const std::string& value) {
    return element("key", key) + value;
}

std::string asDictionary(const TestParameter& parameter) {
    std::string choices;
    for (const std::string& choice : parameter.choices) {
        choices += element("string", choice);
    }
    return element("dict", entry("name", element("string", parameter.name)) +
                               entry("arrayValue", element("array", choices)) +
                               entry("index", element("integer", std::to_string(parameter.index))));
}

std::string asDictionary(const TestProfile& profile, std::size_t id) {
    std::string parameters;
    for (const TestParameter& parameter : profile.parameters) {
        parameters += asDictionary(parameter);
    }
    return element("dict", entry("index", element("integer", std::to_string(id))) +
                               entry("name", element("string", profile.name)) +
                               entry("setInfo", element("array", parameters)));
}

} // namespace

void writeProfiles(const std::string& path, const std::vector<TestProfile>& profiles) {
    std::string all;
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        all += asDictionary(profiles[i], i + 1);
    }
    writeFile(path, R"(<?xml version="1.0" encoding="UTF-8"?>)" +
                        std::string(R"(<plist version="1.0">)") + element("array", all) +
                        "</plist>");
}

std::vector<TestProfile> twoProfiles() {
    return {{"Video (*.mp4)",
             {{"vEncoder", {"MPEG4", "H264"}, 1},
              {"vResolution", {"320x240", "640x480", "160x120"}, 2},
              {"vBitRate", {"300 kbps", "400 kbps", "500 kbps"}, 5},
              {"vFrameRate", {"15", "25", "30"}, 1},
              {"aEncoder", {"MP3", "AAC"}, 1},
              {"aSamplerate", {"44100", "48000"}, -1},
              {"aBitRate", {"96", "128"}, 1},
              {"channel", {"1 (Mono)", "2 (Stereo)"}, 1},
              {"vBitrate", {"1", "2"}, 0}}},
            {"Film (*.avi)",
             {{"channel", {"1"}, 0},
              {"aEncoder", {"MP3"}, 0},
              {"aBitRate", {"64", "80"}, 0},
              {"aSamplerate", {"32000", "22050"}, 1},
              {"vEncoder", {"MPEG4"}, 0},
              {"vFrameRate", {"10", "20"}, 1},
              {"vBitRate", {"200"}, 0},
              {"vResolution", {"176x144 small"}, 0}}}};
}

} // namespace velmora::test
