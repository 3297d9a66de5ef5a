#include "OutputMedia.h"

#include "EngineLog.h"

extern "C" {
#include <libavutil/avstring.h>
}

namespace velmora {
namespace {

bool isMatroska(const AVOutputFormat& format) {
    return av_match_name(format.name, "matroska,webm") != 0;
}

/// Some muxers open files by themselves, as many as they like and by names that they make up. The
/// one for Sega's films reads its file again while it is being written.
bool writesOneFile(const AVOutputFormat& format) {
    return (format.flags & AVFMT_NOFILE) == 0 && av_match_name("film_cpk", format.name) == 0;
}

/// The output's file is opened for the muxer; every other one is refused.
int refuseFile(AVFormatContext* /*context*/, AVIOContext** /*io*/, const char* url, int /*flags*/,
               AVDictionary** /*options*/) {
    logFailure(url, Operation::OpenBesidesOutput, AVERROR(EACCES));
    return AVERROR(EACCES);
}

} // namespace

int OutputMedia::create(const AVOutputFormat& format) {
    if (!writesOneFile(format)) {
        logRefusal(path_, Operation::UseContainer,
                   std::string(format.name) + " is not written as one file");
        return AVERROR(EINVAL);
    }
    AVFormatContext* context = nullptr;
    const int result = avformat_alloc_output_context2(&context, &format, nullptr, path_.c_str());
    context_.reset(context);
    if (result < 0) {
        logFailure(path_, Operation::CreateOutput, result);
        return result;
    }
    context->io_open = refuseFile;
    return 0;
}

OutputStream* OutputMedia::addVideoStream(AVRational frameDuration) {
    OutputStream* added = addStream(video_, frameDuration);
    if (added != nullptr) {
        added->stream->avg_frame_rate = av_inv_q(frameDuration);
    }
    return added;
}

OutputStream* OutputMedia::addAudioStream(AVRational sampleDuration) {
    return addStream(audio_, sampleDuration);
}

OutputStream* OutputMedia::addStream(OutputStream& stream, AVRational unit) {
    stream.stream = avformat_new_stream(context_.get(), nullptr);
    if (stream.stream == nullptr) {
        return nullptr;
    }
    stream.stream->time_base = unit; // a wish; the muxer decides when it writes the header
    stream.unit = unit;
    return &stream;
}

int OutputMedia::begin() {
    int result = context_->nb_streams > 0 ? 0 : AVERROR(EINVAL);
    if (result >= 0) {
        result = file_.open(path_);
        context_->pb = file_.io();
    }
    if (result >= 0) {
        result = writeHeader();
    }
    if (result < 0) {
        logFailure(path_, Operation::BeginOutput, result);
        file_.abandon();
        context_->pb = nullptr;
        return result;
    }
    for (OutputStream* output : {&video_, &audio_}) {
        if (output->stream != nullptr) {
            output->clock = PacketClock(output->stream->time_base, output->unit);
        }
    }
    begun_ = true;
    return 0;
}

int OutputMedia::writeHeader() {
    // The file has a buffer of its own; flushing after every packet would only cost.
    context_->flush_packets = 0;
    if (isMatroska(format())) {
        // The checksums of all data take a third of the time of a copy; no player asks for them.
        setOption("write_crc32", "0");
        setOption("cluster_size_limit", "1048576");
    }
    return avformat_write_header(context_.get(), options_.address());
}

int OutputMedia::write(const OutputStream& stream, AVPacket& packet) {
    packet.stream_index = stream.stream->index;
    packet.time_base = stream.stream->time_base;
    const int result = av_interleaved_write_frame(context_.get(), &packet);
    if (result < 0) {
        logFailure(path_, Operation::WritePacket, result);
    }
    return result;
}

int OutputMedia::finish() {
    begun_ = false;
    const int trailer = av_write_trailer(context_.get());
    const int closing = file_.close();
    context_->pb = nullptr;
    const int result = trailer < 0 ? trailer : closing;
    if (result < 0) {
        logFailure(path_, Operation::FinishOutput, result);
    }
    return result;
}

} // namespace velmora
