#pragma once

#include "TestFiles.h"

#include <string>
#include <vector>

namespace velmora::test {

/// How a media file of the tests is made.
struct MediaRecipe {
    enum class Kind {
        Video,     ///< at least one picture of it can be decoded
        NoPicture, ///< its streams are known, but no picture can be decoded
        Other,     ///< neither, or damaged
    };
    using Edit = void (*)(Bytes&);

    std::string name;
    Kind kind;
    /// Arguments of ffmpeg, to which the output file is added. @NAME stands for the path of another
    /// of these files. Without a command the file holds the bytes of those named by `sources`, one
    /// after the other.
    std::string command;
    std::string sources = {};
    Edit edit = nullptr; ///< what is done to the content in the end
    bool piped = false;  ///< ffmpeg writes it as a stream in which it cannot go back
};

/// All of them.
const std::vector<MediaRecipe>& mediaRecipes();

} // namespace velmora::test
