#include "AudioEncoder.h"

#include "EncodedPackets.h"

extern "C" {
#include <libavutil/avstring.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>

namespace velmora {
namespace {

constexpr std::int64_t kLeastAacBitRate = 128'000;
// For an encoder that takes any number of samples at once.
constexpr int kFrameSizeWhenFree = 1024;

/// The sample format that each encoder is known by.
AVSampleFormat formatOf(AVCodecID codec) {
    switch (codec) {
    case AV_CODEC_ID_AAC:
        return AV_SAMPLE_FMT_S16;
    case AV_CODEC_ID_MP3:
        return AV_SAMPLE_FMT_S16P;
    default:
        return AV_SAMPLE_FMT_FLTP;
    }
}

bool isOfferedForAudio(AVCodecID codec) {
    return codec == AV_CODEC_ID_AAC || codec == AV_CODEC_ID_MP3 || codec == AV_CODEC_ID_VORBIS ||
           codec == AV_CODEC_ID_WMAV2;
}

/// The format, if the encoder takes it, else the first that it takes.
AVSampleFormat accepted(const AVCodec& codec, AVSampleFormat format) {
    for (const AVSampleFormat* offered = codec.sample_fmts;
         offered != nullptr && *offered != AV_SAMPLE_FMT_NONE; ++offered) {
        if (*offered == format) {
            return format;
        }
    }
    return codec.sample_fmts != nullptr ? codec.sample_fmts[0] : format;
}

/// As the FIFO wants them: it does not care what a sample is.
void** planesOf(const AVFrame& frame) {
    return static_cast<void**>(static_cast<void*>(frame.extended_data));
}

} // namespace

int AudioEncoder::open(const AudioSettings& settings, const AVOutputFormat& format) {
    const AVCodec* codec =
        isOfferedForAudio(settings.codec) ? avcodec_find_encoder(settings.codec) : nullptr;
    if (codec == nullptr) {
        return AVERROR_ENCODER_NOT_FOUND;
    }
    if (settings.sampleRate <= 0 || settings.channels <= 0) {
        return AVERROR(EINVAL);
    }
    encoder_.reset(avcodec_alloc_context3(codec));
    if (encoder_ == nullptr) {
        return AVERROR(ENOMEM);
    }
    encoder_->bit_rate = settings.codec == AV_CODEC_ID_AAC
                             ? std::max(settings.bitRate, kLeastAacBitRate)
                             : settings.bitRate;
    encoder_->sample_rate = settings.sampleRate;
    encoder_->sample_fmt = accepted(*codec, formatOf(settings.codec));
    encoder_->time_base = {1, settings.sampleRate};
    av_channel_layout_default(&encoder_->ch_layout, settings.channels);
    if (av_match_name(format.name, "mp4,mov,3gp") != 0) {
        encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    const int result = avcodec_open2(encoder_.get(), codec, nullptr);
    if (result < 0) {
        return result;
    }
    queue_.reset(av_audio_fifo_alloc(encoder_->sample_fmt, settings.channels, 2 * frameSize()));
    return queue_ != nullptr ? 0 : AVERROR(ENOMEM);
}

int AudioEncoder::describe(AVCodecParameters& parameters) const {
    return avcodec_parameters_from_context(&parameters, encoder_.get());
}

int AudioEncoder::queue(const AVFrame& samples, int count) {
    return av_audio_fifo_write(queue_.get(), planesOf(samples), count);
}

int AudioEncoder::queueSilence(int count) {
    const FrameHandle silence = emptyChunk();
    if (silence == nullptr) {
        return AVERROR(ENOMEM);
    }
    av_samples_set_silence(silence->extended_data, 0, count, encoder_->ch_layout.nb_channels,
                           encoder_->sample_fmt);
    return queue(*silence, count);
}

std::int64_t AudioEncoder::samplesQueued() const {
    return samples_ + av_audio_fifo_size(queue_.get());
}

bool AudioEncoder::hasWholeChunk() const {
    return av_audio_fifo_size(queue_.get()) >= frameSize();
}

bool AudioEncoder::isEmpty() const {
    return av_audio_fifo_size(queue_.get()) == 0;
}

int AudioEncoder::encodeChunk(std::vector<PacketHandle>& packets) {
    const FrameHandle chunk = dequeueChunk();
    if (chunk == nullptr) {
        av_audio_fifo_reset(queue_.get());
        return AVERROR(ENOMEM);
    }
    return encode(chunk.get(), packets);
}

FrameHandle AudioEncoder::emptyChunk() const {
    FrameHandle chunk(av_frame_alloc());
    if (chunk == nullptr) {
        return nullptr;
    }
    chunk->nb_samples = frameSize();
    chunk->format = encoder_->sample_fmt;
    chunk->sample_rate = encoder_->sample_rate;
    if (av_channel_layout_copy(&chunk->ch_layout, &encoder_->ch_layout) < 0 ||
        av_frame_get_buffer(chunk.get(), 0) < 0) {
        return nullptr;
    }
    return chunk;
}

FrameHandle AudioEncoder::dequeueChunk() {
    FrameHandle chunk = emptyChunk();
    if (chunk == nullptr) {
        return nullptr;
    }
    const int read = av_audio_fifo_read(queue_.get(), planesOf(*chunk), frameSize());
    const int queued = std::max(read, 0);
    av_samples_set_silence(chunk->extended_data, queued, frameSize() - queued,
                           encoder_->ch_layout.nb_channels, encoder_->sample_fmt);
    chunk->pts = samples_;
    samples_ += frameSize();
    return chunk;
}

int AudioEncoder::drain(std::vector<PacketHandle>& packets) {
    return encode(nullptr, packets);
}

int AudioEncoder::encode(const AVFrame* chunk, std::vector<PacketHandle>& packets) {
    return appendEncoded(*encoder_, chunk, packets);
}

int AudioEncoder::frameSize() const {
    return encoder_->frame_size > 0 ? encoder_->frame_size : kFrameSizeWhenFree;
}

} // namespace velmora
