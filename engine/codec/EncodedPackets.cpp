#include "EncodedPackets.h"

#include <utility>

namespace velmora {

int appendEncoded(AVCodecContext& encoder, const AVFrame* frame,
                  std::vector<PacketHandle>& packets) {
    int result = avcodec_send_frame(&encoder, frame);
    while (result >= 0) {
        PacketHandle packet(av_packet_alloc());
        result =
            packet != nullptr ? avcodec_receive_packet(&encoder, packet.get()) : AVERROR(ENOMEM);
        if (result >= 0) {
            packets.push_back(std::move(packet));
        }
    }
    return result == AVERROR(EAGAIN) || result == AVERROR_EOF ? 0 : result;
}

} // namespace velmora
