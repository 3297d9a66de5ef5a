#include "VideoTranscoder.h"

#include <algorithm>
#include <utility>

namespace velmora {

VideoTranscoder::VideoTranscoder(OutputMedia& output, OutputStream& stream, Decoder& decoder,
                                 VideoEncoder& encoder, Timing timing, std::int64_t& lastTicks)
    : output_(output), stream_(stream), decoder_(decoder), encoder_(encoder), timing_(timing),
      lastTicks_(lastTicks), frameCounter_(lastTicks) {}

VideoTranscoder::~VideoTranscoder() {
    dropPrepared();
}

void VideoTranscoder::prepare(PacketHandle packet) {
    auto work = std::make_unique<Work>();
    work->packet = std::move(packet);
    submit(std::move(work));
}

PacketOutcome VideoTranscoder::handle() {
    const auto work = awaitFirst();
    if (!work->hadPicture) {
        ++withoutPicture_;
    }
    return write(*work);
}

double VideoTranscoder::drain() {
    return output_.videoSecondsAfter(static_cast<std::int64_t>(drained().encoded.size()));
}

PacketOutcome VideoTranscoder::finish() {
    const Work& work = drained();
    auto outcome = wholeness(work);
    for (const PacketHandle& packet : work.encoded) { // also after one that could not be written
        outcome = worse(outcome, write(*packet));
    }
    return outcome;
}

const VideoTranscoder::Work& VideoTranscoder::drained() {
    if (drained_ == nullptr) {
        dropPrepared();
        auto draining = std::make_unique<Work>();
        draining->maxPictures = withoutPicture_;
        submit(std::move(draining));
        drained_ = awaitFirst();
    }
    return *drained_;
}

void VideoTranscoder::submit(std::unique_ptr<Work> work) {
    Work& submitted = *work;
    works_.push_back(std::move(work));
    decoding_.post([this, &submitted] {
        decode(submitted);
        scaling_.post([this, &submitted] {
            scale(submitted);
            encoding_.post([this, &submitted] {
                encode(submitted);
                submitted.done.set_value();
            });
        });
    });
}

void VideoTranscoder::decode(Work& work) {
    constexpr int any = 1 << 16;
    int maxPictures = any;
    if (work.packet == nullptr) {
        decoder_.sendEnd();
        maxPictures = work.maxPictures;
    } else {
        decoder_.send(*work.packet); // a damaged packet may still give a picture
        work.packet.reset();
    }
    for (int i = 0; i < maxPictures; ++i) {
        FrameHandle picture = decoder_.receive();
        if (picture == nullptr) {
            return;
        }
        work.hadPicture = true;
        work.pictures.push_back(std::move(picture));
    }
}

void VideoTranscoder::scale(Work& work) {
    for (FrameHandle& picture : work.pictures) {
        picture = scaler_.fit(*picture, encoder_.context());
        work.isWhole = work.isWhole && picture != nullptr;
    }
}

void VideoTranscoder::encode(Work& work) {
    for (const FrameHandle& frame : work.pictures) {
        PacketHandle packet = frame != nullptr ? encoder_.encode(*frame) : nullptr;
        if (packet != nullptr) {
            work.encoded.push_back(std::move(packet));
        }
    }
    work.pictures.clear();
}

std::unique_ptr<VideoTranscoder::Work> VideoTranscoder::awaitFirst() {
    works_.front()->done.get_future().wait();
    auto work = std::move(works_.front());
    works_.pop_front();
    return work;
}

void VideoTranscoder::dropPrepared() {
    while (!works_.empty()) {
        awaitFirst();
    }
}

PacketOutcome VideoTranscoder::wholeness(const Work& work) {
    return work.isWhole ? PacketOutcome::Done : PacketOutcome::FailedEnd;
}

PacketOutcome VideoTranscoder::write(const Work& work) {
    for (const PacketHandle& packet : work.encoded) {
        if (const auto outcome = write(*packet); outcome != PacketOutcome::Done) {
            return outcome;
        }
    }
    return wholeness(work);
}

PacketOutcome VideoTranscoder::write(AVPacket& packet) {
    PacketClock& clock = stream_.clock;
    packet.flags &= AV_PKT_FLAG_KEY;
    if (timing_ == Timing::Join) {
        stampForJoin(packet);
    } else {
        packet.dts = clock.ticks();
        packet.duration = clock.ticksAt(clock.units() + 1) - packet.dts;
    }
    packet.pts = packet.dts;
    const std::int64_t dts = packet.dts; // the muxer takes the packet
    if (output_.write(stream_, packet) < 0) {
        return PacketOutcome::FailedEnd;
    }
    lastTicks_ = dts;
    clock.continueFrom(dts);
    clock.advance(1);
    return PacketOutcome::Done;
}

void VideoTranscoder::stampForJoin(AVPacket& packet) {
    const PacketClock& clock = stream_.clock;
    const double ahead = output_.audioSeconds() - output_.videoSeconds();
    std::int64_t increment = 1;
    if (ahead > 0) {
        const AVRational timeBase = clock.timeBase();
        increment = static_cast<std::int64_t>(ahead * timeBase.den / timeBase.num + 1.0);
    }
    frameCounter_ += increment;
    packet.dts = std::max(frameCounter_, clock.ticks());
    packet.duration = increment;
}

} // namespace velmora
