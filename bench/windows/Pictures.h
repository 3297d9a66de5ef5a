#pragma once

#include <QString>

// What the exact preview takes. Each loads the file, does its work and prints milliseconds as JSON,
// each until the picture has been painted; 0, or 1 if a picture did not come. Pictures are told by
// their number, from the file's beginning, at 30 a second.

namespace velmora::bench {

/// So many steps from picture `first` on, after a rest there.
int steps(const QString& file, int first, int count);
/// So many key frames, from all of the file.
int keyFrames(const QString& file, int count);
/// So many pictures, each `after` its key frame, of groups that have not been decoded.
int coldPictures(const QString& file, int after, int count);
/// A drag over the whole bar in two seconds: the times between new pictures.
int drag(const QString& file);
/// KiB in use after scrubbing and resting at several places.
int scrubbedMemory(const QString& file);

} // namespace velmora::bench
