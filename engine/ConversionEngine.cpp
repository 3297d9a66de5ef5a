#include "ConversionEngine.h"

#include "AvHandles.h"
#include "BmpFile.h"
#include "EngineLog.h"
#include "HeapSettings.h"
#include "Probe.h"
#include "Run.h"
#include "Snapshot.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <cstring>
#include <new>

namespace velmora {

void FreePicture::operator()(AVFrame* picture) const noexcept {
    av_frame_free(&picture);
}

ConversionEngine& ConversionEngine::instance() {
    static ConversionEngine engine;
    return engine;
}

ConversionEngine::ConversionEngine() : snapshot_(std::make_unique<Snapshot>()) {
    keepFreedMemory();
    setLogSink(nullptr);
    reset();
}

ConversionEngine::~ConversionEngine() = default;

void ConversionEngine::reset() {
    probePath.clear();
    videoStreamIndex = -1;
    audioStreamIndex = -1;
    currentIndex = -1;
    currentPercent = 0;
    stopRequested = 0;
}

StringTable ConversionEngine::allocStringTable(int count, int size) {
    if (count < 1) {
        return {};
    }
    const std::string row(static_cast<std::size_t>(std::max(size, 0)), '\0');
    return {static_cast<std::size_t>(count), row};
}

void ConversionEngine::copyString(char* dst, int size, const char* src) {
    if (size <= 0) {
        return;
    }
    const std::size_t length = strnlen(src, static_cast<std::size_t>(size) - 1);
    std::memcpy(dst, src, length);
    dst[length] = '\0';
}

PictureHandle ConversionEngine::allocPicture(AVPixelFormat pixelFormat, int width, int height) {
    PictureHandle picture(av_frame_alloc());
    const int size = av_image_get_buffer_size(pixelFormat, width, height, 1);
    if (picture == nullptr || size <= 0) {
        return nullptr;
    }
    picture->buf[0] = av_buffer_alloc(static_cast<std::size_t>(size));
    if (picture->buf[0] == nullptr) {
        return nullptr;
    }
    av_image_fill_arrays(picture->data, picture->linesize, picture->buf[0]->data, pixelFormat,
                         width, height, 1);
    picture->format = pixelFormat;
    picture->width = width;
    picture->height = height;
    return picture;
}

std::int32_t ConversionEngine::probe() {
    return velmora::probe(*this);
}

void ConversionEngine::run() {
    velmora::run(*this);
}

std::int32_t ConversionEngine::snapshot() {
    const std::int32_t index = currentIndex;
    const bool inTable = index >= 0 && static_cast<std::size_t>(index) < kMaxInputs;
    double startSeconds = inTable ? startTimes[static_cast<std::size_t>(index)].load() : 0.0;
    const int result = snapshot_->take(probePath, startSeconds, snapshotPath);
    videoStreamIndex = snapshot_->videoStreamIndex();
    audioStreamIndex = snapshot_->audioStreamIndex();
    if (inTable) {
        startTimes[static_cast<std::size_t>(index)] = startSeconds;
    }
    return result;
}

void ConversionEngine::writeBmp(std::uint8_t* pixels, const std::string& path, int width,
                                int height) {
    velmora::writeBmp(pixels, path, width, height);
}

void ConversionEngine::scaleToBmp(const std::string& path, AVCodecContext& decoder,
                                  const AVFrame& frame, int width, int height) {
    velmora::scaleToBmp(path, decoder, frame, width, height);
}

} // namespace velmora
