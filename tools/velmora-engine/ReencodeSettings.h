#pragma once

#include "Job.h"

#include <string_view>

/// The settings of a re-encoding job as they are named on the command line, in a profile's units.
class ReencodeSettings {
public:
    /// Takes one "key=value". False when the key is not known or the value cannot be read.
    bool set(std::string_view setting);
    /// Has the job re-encode with all of them.
    void store(velmora::Job& job) const;

private:
    bool setSize(std::string_view value);

    AVCodecID videoCodec_ = AV_CODEC_ID_H264;
    int videoKilobits_ = 2000; ///< kbit/s
    int width_ = 1280;         ///< pixels
    int height_ = 720;         ///< pixels
    double frameRate_ = 0.0;   ///< pictures per second; 0: as the source
    AVCodecID audioCodec_ = AV_CODEC_ID_AAC;
    int audioKilobits_ = 128; ///< kbit/s
    int sampleRate_ = 44100;  ///< Hz
    int channels_ = 2;
};
