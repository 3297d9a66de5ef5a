#include "FaultyMedia.h"

extern "C" {
#include <libavutil/audio_fifo.h>
#include <libswresample/swresample.h>
}

#include <atomic>
#include <utility>

namespace velmora::test {
namespace {

std::atomic<const FaultyMedia::Decisions*> decisionsNow{nullptr};

} // namespace

FaultyMedia::FaultyMedia(Decisions decisions) : decisions_(std::move(decisions)) {
    decisionsNow = &decisions_;
}

FaultyMedia::~FaultyMedia() {
    decisionsNow = nullptr;
}

const FaultyMedia::Decisions* FaultyMedia::current() {
    return decisionsNow;
}

} // namespace velmora::test

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {
int __real_avformat_open_input(AVFormatContext** input, const char* url,
                               const AVInputFormat* format, AVDictionary** options);
int __real_swr_init(SwrContext* resampler);
int __real_avformat_find_stream_info(AVFormatContext* input, AVDictionary** options);
int __real_avformat_write_header(AVFormatContext* output, AVDictionary** options);
int __real_av_interleaved_write_frame(AVFormatContext* output, AVPacket* packet);
int __real_avcodec_send_frame(AVCodecContext* encoder, const AVFrame* frame);
int __real_av_frame_get_buffer(AVFrame* frame, int align);
int __real_av_audio_fifo_write(AVAudioFifo* queue, void** data, int samples);

int __wrap_avformat_open_input(AVFormatContext** input, const char* url,
                               const AVInputFormat* format, AVDictionary** options) {
    const auto* faults = velmora::test::FaultyMedia::current();
    if (faults != nullptr && faults->open) {
        faults->open();
    }
    return __real_avformat_open_input(input, url, format, options);
}

int __wrap_swr_init(SwrContext* resampler) {
    const auto* faults = velmora::test::FaultyMedia::current();
    if (faults != nullptr && faults->resample) {
        faults->resample();
    }
    return __real_swr_init(resampler);
}

int __wrap_avformat_find_stream_info(AVFormatContext* input, AVDictionary** options) {
    const int result = __real_avformat_find_stream_info(input, options);
    const auto* faults = velmora::test::FaultyMedia::current();
    if (faults != nullptr && faults->describe) {
        faults->describe(*input);
    }
    return result;
}

int __wrap_avformat_write_header(AVFormatContext* output, AVDictionary** options) {
    const auto* faults = velmora::test::FaultyMedia::current();
    const bool fails = faults != nullptr && faults->begin && faults->begin(*output);
    return fails ? AVERROR(EIO) : __real_avformat_write_header(output, options);
}

int __wrap_av_interleaved_write_frame(AVFormatContext* output, AVPacket* packet) {
    const auto* faults = velmora::test::FaultyMedia::current();
    if (faults != nullptr && faults->write && packet != nullptr && faults->write(*packet)) {
        av_packet_unref(packet);
        return AVERROR(EIO);
    }
    return __real_av_interleaved_write_frame(output, packet);
}

int __wrap_avcodec_send_frame(AVCodecContext* encoder, const AVFrame* frame) {
    const auto* faults = velmora::test::FaultyMedia::current();
    const bool fails = faults != nullptr && faults->encode && faults->encode(*encoder, frame);
    return fails ? AVERROR(ENOMEM) : __real_avcodec_send_frame(encoder, frame);
}

int __wrap_av_frame_get_buffer(AVFrame* frame, int align) {
    const auto* faults = velmora::test::FaultyMedia::current();
    const bool fails = faults != nullptr && faults->allocate && faults->allocate(*frame);
    return fails ? AVERROR(ENOMEM) : __real_av_frame_get_buffer(frame, align);
}

int __wrap_av_audio_fifo_write(AVAudioFifo* queue, void** data, int samples) {
    const auto* faults = velmora::test::FaultyMedia::current();
    const bool fails = faults != nullptr && faults->queue && faults->queue(samples);
    return fails ? AVERROR(ENOMEM) : __real_av_audio_fifo_write(queue, data, samples);
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
