#include "SeamEncoder.h"

#include "H264Packets.h"
#include "PictureTiming.h"

#include <algorithm>
#include <string>

namespace velmora {
namespace {

constexpr int kLongestGroup = 3000; // pictures; one that is longer begins anew, which is no harm
constexpr int kProfileFlags = FF_PROFILE_H264_CONSTRAINED | FF_PROFILE_H264_INTRA;

const char* profileName(int profile) {
    switch (profile & ~kProfileFlags) {
    case FF_PROFILE_H264_BASELINE:
        return "baseline";
    case FF_PROFILE_H264_MAIN:
        return "main";
    case FF_PROFILE_H264_HIGH_10:
        return "high10";
    case FF_PROFILE_H264_HIGH_422:
        return "high422";
    case FF_PROFILE_H264_HIGH_444_PREDICTIVE:
        return "high444";
    default:
        return "high";
    }
}

/// Every picture is one that is shown when it has been decoded; but the headers say by how many
/// pictures decoding may run ahead, and there the parts of one stream must agree.
std::string parametersFor(int depth, bool isInterlaced, std::uint32_t id) {
    std::string parameters = "sps-id=" + std::to_string(id) + ":open-gop=0:scenecut=0";
    parameters += ":b-adapt=0:rc-lookahead=0:sync-lookahead=0"; // which would hold pictures in vain
    parameters += depth > 1 ? ":b-pyramid=normal" : ":b-pyramid=none";
    return isInterlaced ? parameters + ":weightp=0" : parameters;
}

void describe(const AVStream& source, AVCodecContext& encoder) {
    const AVCodecParameters& parameters = *source.codecpar;
    const AVRational usual = usualRate(source.r_frame_rate, source.avg_frame_rate);
    const AVRational rate = usual.num > 0 ? usual : AVRational{25, 1};
    encoder.width = parameters.width;
    encoder.height = parameters.height;
    encoder.pix_fmt = static_cast<AVPixelFormat>(parameters.format);
    encoder.time_base = av_inv_q(rate);
    encoder.framerate = rate;
    encoder.sample_aspect_ratio = parameters.sample_aspect_ratio;
    encoder.color_range = parameters.color_range;
    encoder.color_primaries = parameters.color_primaries;
    encoder.color_trc = parameters.color_trc;
    encoder.colorspace = parameters.color_space;
    encoder.chroma_sample_location = parameters.chroma_location;
    encoder.field_order = parameters.field_order;
    encoder.level = parameters.level;
}

} // namespace

int SeamEncoder::open(const AVStream& source, const H264Sets& sets, int depth) {
    const auto id = sets.freeId();
    const int result = id ? openCodec(source, sets, depth, *id) : AVERROR(ENOSYS);
    if (result < 0) {
        return result;
    }
    sets_ =
        H264Sets::parse({encoder_->extradata, static_cast<std::size_t>(encoder_->extradata_size)});
    const bool isAsAsked = sets_ && sets_->sequences().front().id == *id;
    return isAsAsked ? 0 : AVERROR_EXTERNAL;
}

int SeamEncoder::openCodec(const AVStream& source, const H264Sets& sets, int depth,
                           std::uint32_t id) {
    const AVCodec* codec = avcodec_find_encoder_by_name("libx264");
    encoder_.reset(avcodec_alloc_context3(codec));
    if (codec == nullptr || encoder_ == nullptr) {
        return AVERROR_ENCODER_NOT_FOUND;
    }
    const bool isInterlaced = std::ranges::any_of(
        sets.sequences(), [](const H264Sequence& sequence) { return sequence.isAdaptive; });
    describe(source, *encoder_);
    encoder_->gop_size = kLongestGroup;
    encoder_->max_b_frames = depth > 1 ? 3 : depth;
    encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (isInterlaced) {
        encoder_->flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
    }
    encoder_->thread_count = 0;
    OptionDictionary options;
    options.set("preset", "superfast");
    options.set("crf", "18");
    options.set("profile", profileName(source.codecpar->profile));
    options.set("x264-params", parametersFor(depth, isInterlaced, id).c_str());
    return avcodec_open2(encoder_.get(), codec, options.address());
}

int SeamEncoder::encode(AVFrame& picture) {
    picture.pts = sent_;
    picture.pict_type = sent_ == 0 ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_P;
    ++sent_;
    const int result = avcodec_send_frame(encoder_.get(), &picture);
    return result < 0 ? result : receive();
}

int SeamEncoder::receive() {
    for (;;) {
        PacketHandle packet(av_packet_alloc());
        int result = packet != nullptr ? avcodec_receive_packet(encoder_.get(), packet.get())
                                       : AVERROR(ENOMEM);
        if (result < 0) {
            return result == AVERROR(EAGAIN) || result == AVERROR_EOF ? 0 : result;
        }
        const bool isNext = packet->pts == received_;
        result = isNext ? convertH264(*packet, 0, H264Kept::AllButSetsAndSettings) : AVERROR_BUG;
        if (result < 0) {
            return result;
        }
        packet->duration = 0; // was counted in pictures
        packets_.push_back(std::move(packet));
        ++received_;
    }
}

int SeamEncoder::finish() {
    int result = avcodec_send_frame(encoder_.get(), nullptr);
    if (result >= 0) {
        result = receive();
    }
    return result >= 0 && received_ != sent_ ? AVERROR_BUG : result;
}

} // namespace velmora
