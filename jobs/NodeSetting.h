#pragma once

#include <QString>

#include <cstdint>

namespace velmora {

struct Profile;

/// One set of output parameters as texts: the default choices of a profile, or what the user has
/// chosen. Main thread, but for the start of a run, which reads it.
struct NodeSetting {
    QString profileName;
    std::int32_t defineType = 0;    ///< the profile's id
    std::int32_t isDefautValue = 0; ///< 1: the parameters are the profile's defaults
    std::int32_t isMerge = 0;       ///< not used
    QString vEncoder;
    QString vResolution; ///< "1280x720", pixels
    QString vFrameRate;  ///< pictures per second; "0": as the source
    QString vBitrate;    ///< kbit/s
    QString aEncoder;
    QString aSamplerate; ///< Hz
    QString aBitrate;    ///< kbit/s
    QString aChannels;
    bool imCut = false;             ///< not used
    bool imJoin = false;            ///< not used
    bool isDirectlyConvert = false; ///< not used
    std::int32_t width = 0;         ///< pixels
    std::int32_t height = 0;        ///< pixels
    float cutStartTime = 0;         ///< milliseconds; -1: not a time
    float cutEndTime = 0;           ///< milliseconds; -1: not a time

    /// Takes the id, the name and the default choices of the profile, null standing for one without
    /// any. Texts for which it has no choice, frame size, flags and times stay as they are.
    NodeSetting& initWithDict(const Profile* profile);
};

} // namespace velmora
