#include "BmpFile.h"

#include "AvHandles.h"
#include "EngineLog.h"
#include "FileDescriptor.h"

extern "C" {
#include <libavutil/intreadwrite.h>
}

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <span>
#include <vector>

namespace velmora {
namespace {

constexpr std::size_t kHeaderBytes = 54;
constexpr std::size_t kBytesPerPixel = 3;

std::array<std::uint8_t, kHeaderBytes> bmpHeader(std::size_t width, std::size_t height) {
    // The size of the picture with padded rows, although the rows are written without padding.
    const auto imageBytes =
        static_cast<std::uint32_t>((width * kBytesPerPixel + 3) / 4 * height * 4);
    std::array<std::uint8_t, kHeaderBytes> header{};
    header[0] = 'B';
    header[1] = 'M';
    AV_WL32(&header[2], imageBytes + kHeaderBytes);
    AV_WL32(&header[10], kHeaderBytes);
    AV_WL32(&header[14], 40); // size of the information header
    AV_WL32(&header[18], static_cast<std::uint32_t>(width));
    AV_WL32(&header[22], static_cast<std::uint32_t>(height));
    AV_WL16(&header[26], 1);  // planes
    AV_WL16(&header[28], 24); // bits per pixel
    AV_WL32(&header[34], imageBytes);
    return header;
}

/// The picture may lie in a folder in which others can put links: only a plain file that belongs to
/// this user and has no other name is overwritten.
FileDescriptor openPicture(const std::string& path) {
    constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    FileDescriptor file(::open(path.c_str(), flags, S_IRUSR | S_IWUSR));
    struct stat status {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0) {
        return {};
    }
    const bool own = S_ISREG(status.st_mode) && status.st_uid == geteuid() && status.st_nlink == 1;
    if (!own || ftruncate(file.get(), 0) != 0) {
        return {};
    }
    return file;
}

bool writeAll(int descriptor, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return true;
}

void flipRows(std::uint8_t* pixels, std::size_t stride, std::size_t height) {
    if (stride == 0) {
        return; // there may be billions of rows with nothing in them
    }
    for (std::size_t row = 0; row < height / 2; ++row) {
        std::swap_ranges(pixels + row * stride, pixels + (row + 1) * stride,
                         pixels + (height - 1 - row) * stride);
    }
}

} // namespace

void writeBmp(std::uint8_t* pixels, const std::string& path, int width, int height) {
    if (width < 0 || height < 0) {
        return;
    }
    const FileDescriptor file = openPicture(path);
    if (!file.isOpen()) {
        av_log(nullptr, AV_LOG_ERROR, "%s: cannot be written as a picture\n", path.c_str());
        return;
    }
    const auto columns = static_cast<std::size_t>(width);
    const auto rows = static_cast<std::size_t>(height);
    const std::size_t stride = columns * kBytesPerPixel;
    flipRows(pixels, stride, rows);
    if (!writeAll(file.get(), bmpHeader(columns, rows)) ||
        !writeAll(file.get(), {pixels, stride * rows})) {
        logFailure(path, Operation::WritePicture, AVERROR(errno));
    }
}

void scaleToBmp(const std::string& path, const AVFrame& frame, int width, int height) {
    // The frame's own size: the decoder may already know of a later picture's.
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const ScalerHandle scaler(format != AV_PIX_FMT_NONE
                                  ? sws_getContext(frame.width, frame.height, format, width, height,
                                                   AV_PIX_FMT_BGR24, SWS_FAST_BILINEAR, nullptr,
                                                   nullptr, nullptr)
                                  : nullptr);
    if (scaler == nullptr) {
        av_log(nullptr, AV_LOG_ERROR, "pictures of %d x %d cannot be scaled\n", frame.width,
               frame.height);
        return;
    }
    const int stride = width * static_cast<int>(kBytesPerPixel);
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(stride) *
                                     static_cast<std::size_t>(height));
    const std::array<std::uint8_t*, 4> planes{pixels.data()};
    const std::array<int, 4> strides{stride};
    sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, planes.data(),
              strides.data());
    writeBmp(pixels.data(), path, width, height);
}

} // namespace velmora
