#include "ColourConversion.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace velmora {
namespace {

bool isHighDynamicRange(AVColorTransferCharacteristic transfer) {
    return transfer == AVCOL_TRC_SMPTE2084 || transfer == AVCOL_TRC_ARIB_STD_B67;
}

bool isWide(AVColorPrimaries primaries, AVColorTransferCharacteristic transfer) {
    return primaries == AVCOL_PRI_BT2020 || isHighDynamicRange(transfer);
}

bool isRgb(int format) {
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(format));
    return description != nullptr && (description->flags & AV_PIX_FMT_FLAG_RGB) != 0;
}

/// As the converter has to be told: pictures that are wide without saying all of it are BT.2020.
std::string inputOf(const AVFrame& picture) {
    const bool isFull = picture.color_range == AVCOL_RANGE_JPEG;
    const bool isHlg = picture.color_trc == AVCOL_TRC_ARIB_STD_B67;
    const bool isPq = picture.color_trc == AVCOL_TRC_SMPTE2084;
    const std::string transfer = isPq ? "smpte2084" : isHlg ? "arib-std-b67" : "bt709";
    const std::string matrix = isRgb(picture.format)
                                   ? "gbr"
                                   : (picture.colorspace == AVCOL_SPC_BT709 ? "709" : "2020_ncl");
    return "pin=2020:tin=" + transfer + ":min=" + matrix + ":rin=" + (isFull ? "full" : "limited");
}

} // namespace

ColourDescription outputColours(const AVCodecParameters& source, int height) {
    constexpr int kLeastHdHeight = 720;
    if (isWide(source.color_primaries, source.color_trc)) {
        return {AVCOL_PRI_BT709, AVCOL_TRC_BT709, AVCOL_SPC_BT709};
    }
    ColourDescription colours{source.color_primaries, source.color_trc, source.color_space};
    if (isRgb(source.format) || source.color_space == AVCOL_SPC_RGB) {
        colours.matrix = height >= kLeastHdHeight ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    }
    return colours;
}

std::string colourFilters(const AVFrame& picture, bool tells) {
    if (!isWide(picture.color_primaries, picture.color_trc)) {
        return {};
    }
    if (!isHighDynamicRange(picture.color_trc)) {
        return "zscale=" + inputOf(picture) + ":p=709:t=709:m=709:r=limited,format=yuv420p,";
    }
    if (tells) {
        av_log(nullptr, AV_LOG_INFO, "%s is mapped to the range of BT.709 (hable)\n",
               av_color_transfer_name(picture.color_trc));
    }
    return "zscale=" + inputOf(picture) +
           ":t=linear:npl=100,format=gbrpf32le,zscale=p=709,tonemap=tonemap=hable:desat=0,"
           "zscale=t=709:m=709:r=limited,format=yuv420p,";
}

} // namespace velmora
