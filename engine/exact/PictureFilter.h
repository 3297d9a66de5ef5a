#pragma once

#include "AvHandles.h"

#include <deque>
#include <string>

struct AVFilterContext;
struct AVFilterGraph;

namespace velmora {

struct FreeFilterGraph {
    void operator()(AVFilterGraph* graph) const noexcept;
};
using FilterGraphHandle = std::unique_ptr<AVFilterGraph, FreeFilterGraph>;

/// A size in pixels.
struct PictureSize {
    int width = 0;
    int height = 0;
    bool operator==(const PictureSize&) const = default;
};

/// How pictures are stored.
struct PictureFormat {
    AVPixelFormat pixels = AV_PIX_FMT_YUV420P;
    int step = 2; ///< width and height are multiples of it
};

/// What an output wants its pictures to be like.
struct PictureForm {
    PictureSize size;
    PictureFormat format;
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED; ///< unspecified: what is usual for the size
};

/// The size in which pictures of the stream are shown: upright and in square pixels. 0 x 0 when the
/// stream does not tell.
PictureSize uprightSize(AVFormatContext& container, AVStream& stream,
                        const PictureFormat& format = {});

/// Brings the pictures of one source into the form of an output, without changing their times:
/// upright, fitted into the size with bars, square pixels, in 8 bits and in the range and the
/// colours that every player knows. Interlaced pictures are made progressive where their height
/// changes. Belongs to one thread; works with all cores.
class PictureFilter {
public:
    /// `stream` tells how pictures are turned and shaped; it outlives this object.
    PictureFilter(AVFormatContext& container, AVStream& stream, const PictureForm& form);
    PictureFilter(const PictureFilter&) = delete;
    PictureFilter& operator=(const PictureFilter&) = delete;
    ~PictureFilter();

    /// Takes a picture with `pts` in the stream's time base. 0 or a negative libav error code.
    int send(FrameHandle picture);
    /// No picture follows. 0 or a negative code.
    int sendEnd();
    /// The next picture, with `pts` in the stream's time base; null when there is none yet.
    FrameHandle receive();

private:
    /// What a graph is made for; other pictures need another graph.
    struct Form {
        PictureSize size;
        int format = AV_PIX_FMT_NONE;
        AVRational aspect{0, 1};
        AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
        AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
        AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
        bool interlaced = false;
        bool operator==(const Form& other) const;
    };

    Form formOf(const AVFrame& picture) const;
    int build(const AVFrame& picture, const Form& form);
    int connect(const std::string& filters);
    FrameHandle receiveFromGraph();
    std::string description(const AVFrame& picture, bool isFirst) const;
    std::string matrixFor(const AVFrame& picture) const;

    AVFormatContext& container_;
    AVStream& stream_;
    const PictureSize size_;
    const PictureFormat format_;
    const AVColorSpace matrix_;
    FilterGraphHandle graph_;
    AVFilterContext* source_ = nullptr; ///< owned by the graph
    AVFilterContext* sink_ = nullptr;   ///< owned by the graph
    Form form_;
    std::deque<FrameHandle> finished_; ///< of the graph before
};

} // namespace velmora
