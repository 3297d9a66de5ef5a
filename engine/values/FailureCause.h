#pragma once

#include <cstdint>
#include <string>

namespace velmora {

/// Why a run failed or a file was refused.
struct FailureCause {
    enum class Kind {
        None, ///< nothing failed, or nobody knows
        // About an input.
        InputMissing,
        InputNotReadable, ///< no permission
        InputIsEmpty,
        InputIsNoMedia, ///< or damaged from its beginning
        InputIsCut,     ///< ends before what is needed to read it
        InputIsEncrypted,
        NoDecoder,
        NoPictures,
        NoFrameRate,
        UnknownLength,
        NothingBetweenTimes,
        // About the output.
        FolderMissing,
        NotWritable,
        DiskFull,
        FileTooLarge, ///< for its file system
        OutputIsInput,
        UnknownContainer,
        ContainerNotUsable, ///< it is not written as one file
        CodecNotTaken,      ///< by the container
        EncoderMissing,
        SizeRefused,
        RateRefused,  ///< of pictures
        SoundRefused, ///< its sample rate or its number of channels
        Other,
    };

    Kind kind = Kind::None;
    std::string path;             ///< of the file in question
    std::string library;          ///< the library's or the system's text
    std::string codec;            ///< in question, the library's name
    std::string choice;           ///< what would do: containers, the nearest size or rate
    std::int64_t neededBytes = 0; ///< about; 0: not known
    std::int64_t freeBytes = 0;
};

} // namespace velmora
