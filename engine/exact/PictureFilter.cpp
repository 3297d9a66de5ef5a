#include "PictureFilter.h"

#include "ColourConversion.h"
#include "DisplayMatrix.h"
#include "EngineLog.h"
#include "FilterLibrary.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <string>
#include <utility>

namespace velmora {
namespace {

/// Only where one has been made sure to be there.
const FilterLibrary& library() {
    return *FilterLibrary::instance();
}

struct FreeFilterLinks {
    void operator()(AVFilterInOut* links) const noexcept { library().freeLinks(&links); }
};
using FilterLinks = std::unique_ptr<AVFilterInOut, FreeFilterLinks>;

/// The next multiple.
int stepped(std::int64_t length, int step) {
    return static_cast<int>(std::max<std::int64_t>((length + step - 1) / step, 1) * step);
}

AVRational positive(AVRational aspect) {
    return aspect.num > 0 && aspect.den > 0 ? aspect : AVRational{1, 1};
}

/// The size in square pixels. None of the lengths gets smaller.
PictureSize squareSize(std::int64_t width, std::int64_t height, AVRational aspect, int step) {
    if (aspect.num >= aspect.den) {
        return {stepped(av_rescale(width, aspect.num, aspect.den), step), stepped(height, step)};
    }
    return {stepped(width, step), stepped(av_rescale(height, aspect.den, aspect.num), step)};
}

/// The largest part of `room` that has the proportions of `shape`.
PictureSize fitted(PictureSize shape, PictureSize room, int step) {
    const std::int64_t byWidth = av_rescale(shape.height, room.width, shape.width);
    if (byWidth <= room.height) {
        return {room.width, std::min(stepped(byWidth, step), room.height)};
    }
    const std::int64_t byHeight = av_rescale(shape.width, room.height, shape.height);
    return {std::min(stepped(byHeight, step), room.width), room.height};
}

/// The filters that turn a picture, each with a comma behind it.
std::string filtersOf(const DisplayTurn& turn) {
    std::string filters;
    if (turn.swapsSides) {
        filters += "transpose=dir=cclock_flip,"; // rows become columns, and nothing else
    }
    if (turn.flipsAcross) {
        filters += "hflip,";
    }
    if (turn.flipsDown) {
        filters += "vflip,";
    }
    return filters;
}

/// One that the scaler knows; what nobody tells is what is usual for pictures of this height.
AVColorSpace usualMatrix(AVColorSpace matrix, int height) {
    constexpr int kLeastHdHeight = 720;
    switch (matrix) {
    case AVCOL_SPC_BT709:
    case AVCOL_SPC_FCC:
    case AVCOL_SPC_SMPTE240M:
    case AVCOL_SPC_BT2020_NCL:
        return matrix;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return AVCOL_SPC_SMPTE170M;
    default:
        return height >= kLeastHdHeight ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    }
}

/// As the scaler calls it.
const char* nameOf(AVColorSpace matrix) {
    return matrix == AVCOL_SPC_BT2020_NCL ? "bt2020" : av_color_space_name(matrix);
}

std::string text(PictureSize size) {
    return std::to_string(size.width) + ":" + std::to_string(size.height);
}

} // namespace

void FreeFilterGraph::operator()(AVFilterGraph* graph) const noexcept {
    library().freeGraph(&graph);
}

bool PictureFilter::Form::operator==(const Form& other) const {
    return size == other.size && format == other.format &&
           av_cmp_q(positive(aspect), positive(other.aspect)) == 0 && transfer == other.transfer &&
           primaries == other.primaries && matrix == other.matrix && interlaced == other.interlaced;
}

PictureSize uprightSize(AVFormatContext& container, AVStream& stream, const PictureFormat& format) {
    const AVCodecParameters& coded = *stream.codecpar;
    if (coded.width <= 0 || coded.height <= 0) {
        return {};
    }
    const AVRational aspect = positive(av_guess_sample_aspect_ratio(&container, &stream, nullptr));
    PictureSize size = squareSize(coded.width, coded.height, aspect, format.step);
    if (displayTurnOf(stream).swapsSides) {
        std::swap(size.width, size.height);
    }
    return size;
}

PictureFilter::PictureFilter(AVFormatContext& container, AVStream& stream, const PictureForm& form)
    : container_(container), stream_(stream), size_(form.size), format_(form.format),
      matrix_(usualMatrix(form.matrix, form.size.height)) {}

PictureFilter::~PictureFilter() = default;

int PictureFilter::send(FrameHandle picture) {
    const Form form = formOf(*picture);
    if (graph_ == nullptr || !(form == form_)) {
        if (graph_ != nullptr) {
            sendEnd();
        }
        if (const int result = build(*picture, form); result < 0) {
            logFailure("pictures", Operation::FilterPictures, result);
            return result;
        }
    }
    return library().addFrame(source_, picture.get());
}

int PictureFilter::sendEnd() {
    if (graph_ == nullptr) {
        return 0;
    }
    const int result = library().addFrame(source_, nullptr);
    while (FrameHandle picture = receiveFromGraph()) {
        finished_.push_back(std::move(picture));
    }
    graph_.reset();
    return result;
}

FrameHandle PictureFilter::receive() {
    if (!finished_.empty()) {
        FrameHandle picture = std::move(finished_.front());
        finished_.pop_front();
        return picture;
    }
    return graph_ != nullptr ? receiveFromGraph() : nullptr;
}

FrameHandle PictureFilter::receiveFromGraph() {
    FrameHandle picture(av_frame_alloc());
    if (picture == nullptr || library().takeFrame(sink_, picture.get()) < 0) {
        return nullptr;
    }
    picture->pts = av_rescale_q(picture->pts, library().sinkTimeBase(sink_), stream_.time_base);
    picture->pict_type = AV_PICTURE_TYPE_NONE; // the encoder's choice, not the source's
    return picture;
}

PictureFilter::Form PictureFilter::formOf(const AVFrame& picture) const {
    return {.size = {picture.width, picture.height},
            .format = picture.format,
            .aspect =
                av_guess_sample_aspect_ratio(&container_, &stream_, const_cast<AVFrame*>(&picture)),
            .transfer = picture.color_trc,
            .primaries = picture.color_primaries,
            .matrix = picture.colorspace,
            // One that is, among others: the filter looks at each.
            .interlaced = picture.interlaced_frame != 0 || form_.interlaced};
}

int PictureFilter::build(const AVFrame& picture, const Form& form) {
    const bool isFirst = form_.format == AV_PIX_FMT_NONE;
    if (FilterLibrary::instance() == nullptr) {
        return AVERROR_FILTER_NOT_FOUND;
    }
    form_ = form;
    graph_.reset(library().allocGraph());
    if (graph_ == nullptr) {
        return AVERROR(ENOMEM);
    }
    source_ = library().allocFilter(graph_.get(), library().getByName("buffer"), "in");
    std::unique_ptr<AVBufferSrcParameters, FreeByPointer<av_free>> parameters(
        library().allocSourceParameters());
    if (source_ == nullptr || parameters == nullptr) {
        return AVERROR(ENOMEM);
    }
    parameters->format = picture.format;
    parameters->time_base = stream_.time_base;
    parameters->width = picture.width;
    parameters->height = picture.height;
    parameters->sample_aspect_ratio = positive(form.aspect);
    int result = library().setSourceParameters(source_, parameters.get());
    if (result >= 0) {
        result = library().initFilter(source_, nullptr);
    }
    if (result >= 0) {
        result = library().createFilter(&sink_, library().getByName("buffersink"), "out", nullptr,
                                        nullptr, graph_.get());
    }
    return result < 0 ? result : connect(description(picture, isFirst));
}

int PictureFilter::connect(const std::string& filters) {
    FilterLinks outputs(library().allocLinks());
    FilterLinks inputs(library().allocLinks());
    if (outputs == nullptr || inputs == nullptr) {
        return AVERROR(ENOMEM);
    }
    outputs->name = av_strdup("in");
    outputs->filter_ctx = source_;
    inputs->name = av_strdup("out");
    inputs->filter_ctx = sink_;
    AVFilterInOut* openInputs = inputs.release();
    AVFilterInOut* openOutputs = outputs.release();
    const int result =
        library().parseGraph(graph_.get(), filters.c_str(), &openInputs, &openOutputs, nullptr);
    inputs.reset(openInputs);
    outputs.reset(openOutputs);
    return result < 0 ? result : library().configureGraph(graph_.get(), nullptr);
}

std::string PictureFilter::description(const AVFrame& picture, bool isFirst) const {
    const DisplayTurn turn = displayTurnOf(stream_);
    PictureSize upright =
        squareSize(picture.width, picture.height, positive(form_.aspect), format_.step);
    PictureSize stored{picture.width, picture.height};
    if (turn.swapsSides) {
        std::swap(upright.width, upright.height);
        std::swap(stored.width, stored.height);
    }
    const PictureSize fit = fitted(upright, size_, format_.step);
    std::string filters;
    if (form_.interlaced && fit.height != stored.height) {
        filters += "bwdif=mode=send_frame:deint=interlaced,";
    }
    filters += colourFilters(picture, isFirst);
    filters += filtersOf(turn);
    filters += "scale=" + text(fit) + ":flags=bicubic:out_range=tv" + matrixFor(picture) + ",";
    if (fit != size_) {
        const PictureSize bars{(size_.width - fit.width) / 4 * 2,
                               (size_.height - fit.height) / 4 * 2};
        filters += "pad=" + text(size_) + ":" + text(bars) + ",";
    }
    return filters + "setsar=1,format=" + av_get_pix_fmt_name(format_.pixels);
}

/// Inputs of a join may have another one than the output. Wide colours have been brought to BT.709.
std::string PictureFilter::matrixFor(const AVFrame& picture) const {
    const std::string wanted = std::string(":out_color_matrix=") + nameOf(matrix_);
    const AVPixFmtDescriptor* format =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
    if (format != nullptr && (format->flags & AV_PIX_FMT_FLAG_RGB) != 0) {
        return wanted;
    }
    const bool isConverted = !colourFilters(picture, false).empty();
    const AVColorSpace matrix =
        isConverted ? AVCOL_SPC_BT709 : usualMatrix(picture.colorspace, picture.height);
    return matrix == matrix_ ? std::string()
                             : ":in_color_matrix=" + std::string(nameOf(matrix)) + wanted;
}

} // namespace velmora
