#pragma once

// Owning types for every libav object that the engine holds. Raw pointers to libav objects only
// observe; what is created is put into one of these at once.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavcodec/vorbis_parser.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/dict.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

#include <memory>

namespace velmora {

/// Calls `Free` with the address of the pointer, as most of libav's release functions want it.
template <auto Free> struct FreeByAddress {
    template <typename T> void operator()(T* object) const noexcept { Free(&object); }
};

/// Calls `Free` with the pointer itself.
template <auto Free> struct FreeByPointer {
    template <typename T> void operator()(T* object) const noexcept { Free(object); }
};

using InputContextHandle = std::unique_ptr<AVFormatContext, FreeByAddress<avformat_close_input>>;
using OutputContextHandle = std::unique_ptr<AVFormatContext, FreeByPointer<avformat_free_context>>;
using CodecContextHandle = std::unique_ptr<AVCodecContext, FreeByAddress<avcodec_free_context>>;
using BitstreamFilterHandle = std::unique_ptr<AVBSFContext, FreeByAddress<av_bsf_free>>;
using PacketHandle = std::unique_ptr<AVPacket, FreeByAddress<av_packet_free>>;
using FrameHandle = std::unique_ptr<AVFrame, FreeByAddress<av_frame_free>>;
using VorbisParserHandle =
    std::unique_ptr<AVVorbisParseContext, FreeByAddress<av_vorbis_parse_free>>;
using ScalerHandle = std::unique_ptr<SwsContext, FreeByPointer<sws_freeContext>>;

/// An option dictionary; libav functions that consume options get its address.
class OptionDictionary {
public:
    OptionDictionary() = default;
    OptionDictionary(const OptionDictionary&) = delete;
    OptionDictionary& operator=(const OptionDictionary&) = delete;
    ~OptionDictionary() { av_dict_free(&entries_); }

    void set(const char* key, const char* value) { av_dict_set(&entries_, key, value, 0); }
    AVDictionary** address() { return &entries_; }

private:
    AVDictionary* entries_ = nullptr;
};

/// An owned channel layout.
class ChannelLayout {
public:
    ChannelLayout() = default;
    ChannelLayout(const ChannelLayout& other) { av_channel_layout_copy(&layout_, &other.layout_); }
    ChannelLayout& operator=(const ChannelLayout& other) {
        if (this != &other) {
            av_channel_layout_copy(&layout_, &other.layout_);
        }
        return *this;
    }
    ~ChannelLayout() { av_channel_layout_uninit(&layout_); }

    AVChannelLayout* get() { return &layout_; }
    const AVChannelLayout* get() const { return &layout_; }
    int channels() const { return layout_.nb_channels; }
    bool operator==(const ChannelLayout& other) const {
        return av_channel_layout_compare(&layout_, &other.layout_) == 0;
    }

private:
    AVChannelLayout layout_{};
};

/// The buffer of an AVIOContext may be replaced by the library, so it is released through it.
struct FreeIoContext {
    void operator()(AVIOContext* io) const noexcept {
        av_freep(static_cast<void*>(&io->buffer));
        avio_context_free(&io);
    }
};
using IoContextHandle = std::unique_ptr<AVIOContext, FreeIoContext>;

} // namespace velmora
