#include "SignalMedia.h"

#include "JobSupport.h"

#include <map>

namespace velmora::test {
namespace {

/// An input that begins with a flash and a beep.
struct Signal {
    const char* rate = "25";
    double pictureSeconds = 2;
    double soundSeconds = 2; ///< 0: none
    const char* encoding = "-c:v libx264 -preset ultrafast -bf 0 -c:a aac -ac 2";
    const char* extension = "mov";
};

std::string made(const std::string& name, const Signal& signal) {
    const std::string picture = ":s=64x48:r=" + std::string(signal.rate) + ":d=";
    std::string command = "-f lavfi -i color=white" + picture + "0.2[a];color=black" + picture +
                          std::to_string(signal.pictureSeconds - 0.2) +
                          "[b];[a][b]concat,format=yuv420p ";
    if (signal.soundSeconds > 0) {
        command += "-f lavfi -i sine=f=1000:sample_rate=44100:d=0.2,volume=8,apad=whole_dur=" +
                   std::to_string(signal.soundSeconds) + " ";
    }
    return mediaMadeBy(command + signal.encoding, "signal-" + name + "." + signal.extension);
}

} // namespace

std::string signalOf(const std::string& name) {
    const std::map<std::string, Signal> signals = {
        {"even", {}},
        {"ntsc", {.rate = "30000/1001"}},
        {"fast", {.rate = "50"}},
        {"shortSound", {.soundSeconds = 1}},
        {"longSound", {.pictureSeconds = 1}},
        {"mute", {.soundSeconds = 0}},
        {"bFrames",
         {.encoding =
              "-c:v libx264 -preset ultrafast -bf 3 -x264-params b-adapt=0 -c:a aac -ac 2"}},
        {"blocks",
         {.encoding =
              "-c:v libx264 -preset ultrafast -bf 0 -c:a aac -ac 2 -chunk_duration 500000"}},
        {"mpeg4", {.encoding = "-c:v mpeg4 -bf 1 -c:a libmp3lame -ac 2", .extension = "avi"}},
    };
    return made(name, signals.at(name));
}

} // namespace velmora::test
