#pragma once

// What is done to the content of media files that ffmpeg would not make so.

#include "TestFiles.h"

namespace velmora::test {

void keepFirstHalf(Bytes& content);

/// Every 500th byte of the second fourth, which lies among the coded pictures and sound.
void overwriteBytes(Bytes& content);

/// The first coded picture of an mp4.
void overwriteStart(Bytes& content);

/// Of a transport stream.
void dropFirstThird(Bytes& content);

/// MPEG-4 in avi gets a code that stands for no codec.
void forgetCodec(Bytes& content);

/// Of FFV1 in avi.
void damageDecoderHeader(Bytes& content);

/// AV1 in ivf, of which not even the first bits are as they have to be.
void writeImpossiblePictures(Bytes& content);

void writeText(Bytes& content);

/// In the form of srt.
void writeSubtitles(Bytes& content);

} // namespace velmora::test
