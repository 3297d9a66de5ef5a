#pragma once

#include "CodedPictures.h"
#include "CutPlan.h"

#include <cstdint>
#include <map>
#include <string>

namespace velmora {

/// What is known of a source's coded pictures around both ends of a window.
struct PictureIndex {
    PicturesAround around;
    /// By how many pictures decoding runs ahead of showing in them, at the most.
    int depth = 0;
    std::string trouble; ///< why they cannot be copied, as the end of a sentence
    /// When each picture is decoded, by when it is shown.
    std::map<std::int64_t, std::int64_t> decodedAt;
};

/// Reads as much as the plan of the window needs, which is little where the source has an index.
PictureIndex readIndex(CodedPictures& pictures, const CutRule& rule);

} // namespace velmora
