#pragma once

#include "AvHandles.h"
#include "FileDescriptor.h"
#include "FileReader.h"
#include "StopFlag.h"

#include <memory>
#include <string>
#include <vector>

namespace velmora {

/// The files of one input for libavformat: the one that was chosen, and the nested ones that it
/// names, such as the parts of a play list. Owns all that are open. Belongs to one thread.
///
/// A nested file is opened only when it is a regular file in the folder of the input's name or
/// below that folder, with links resolved; everything else is refused and logged, and so is a play
/// list without an end, the input itself included. The file is found without being opened, looked
/// at where it lies, and that very file is read, whatever its name has come to mean by then. The
/// concat and dash demuxers make contexts of their own, which know nothing of this and ask for the
/// library's protocols; all of those are off, so they open nothing. External references of a movie
/// are not followed at all.
class InputFiles {
public:
    /// Reads of any of the files fail with AVERROR_EXIT once `stop` is raised; null: never.
    InputFiles(std::string path, const StopFlag* stop);
    InputFiles(const InputFiles&) = delete;
    InputFiles& operator=(const InputFiles&) = delete;
    ~InputFiles() = default;

    /// Opens the input itself. 0, or a negative libav error code.
    int open();

    /// Makes a new context read from here, now and for what is nested; it must be closed before
    /// this goes away. 0, or a negative code; the context then is as it was.
    int attachTo(AVFormatContext& context);
    /// The context's header has been read: from now on any number of nested files may be opened,
    /// one after another. Before, a list that leads back to itself would never come to an end.
    void endHeader() { readsHeader_ = false; }

    /// Whether the input at `path` may read the file at `other` as a nested one: it is a play list
    /// and the file lies where it may be. False when one of them cannot be found.
    static bool mayName(const std::string& path, const std::string& other);

    /// Whether the file at `output` is one of the inputs, or may be part of one. False when it is
    /// not there.
    static bool mayReach(const std::vector<std::string>& inputs, const std::string& output);

    /// The input's name, such that libavformat cannot take it for an address.
    std::string url() const;
    /// Of the input itself, as it was when it was opened.
    const FileIdentity& identity() const { return input_.identity(); }

private:
    static int openNested(AVFormatContext* context, AVIOContext** io, const char* url, int flags,
                          AVDictionary** options);
    static int closeNested(AVFormatContext* context, AVIOContext* io);

    int openNested(const char* url, AVIOContext** io);
    int openAllowed(const char* url, FileReader& reader);
    int openWhereAllowed(const char* url, FileReader& reader) const;
    bool mayBeRead(const FileDescriptor& file) const;

    std::string path_;
    const StopFlag* stop_;
    FileDescriptor folder_; ///< where nested files may be; none may when it is closed
    FileReader input_;
    std::vector<std::unique_ptr<FileReader>> nested_;
    bool readsHeader_ = true;
    int openedForHeader_ = 0; ///< nested files
};

} // namespace velmora
