#include "PictureServerSupport.h"

#include "MediaReader.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace velmora::test {
namespace {

constexpr int kWidth = 256;
constexpr int kHeight = 128;

} // namespace

std::vector<Shown> allPictures(const std::string& path) {
    const auto read = ffprobeJson(path, {"-select_streams", "V:0", "-show_entries",
                                         "format=start_time:frame=best_effort_timestamp_time"});
    const std::string pixels =
        runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", path, "-fps_mode", "passthrough",
                    "-f", "rawvideo", "-pix_fmt", "gray", "-"})
            .output;
    const auto& format = read.at("format");
    const double start =
        format.contains("start_time") ? std::stod(format.at("start_time").get<std::string>()) : 0;
    std::vector<Shown> all;
    for (const auto& frame : read.at("frames")) {
        const auto* picture =
            reinterpret_cast<const std::uint8_t*>(pixels.data()) + all.size() * kWidth * kHeight;
        // Raw streams and AVI do not tell when pictures are shown: their number does.
        const bool isTimed =
            frame.contains("best_effort_timestamp_time") && !path.ends_with(".avi");
        const double seconds =
            isTimed ? std::stod(frame.at("best_effort_timestamp_time").get<std::string>()) - start
                    : 0.04 * static_cast<double>(all.size());
        all.push_back({std::llround(seconds * 1e6), numberIn(picture, kWidth, kHeight, 1)});
    }
    return all;
}

void PictureServer::open(const std::string& path) {
    service_.reset();
    answers_.clear();
    service_ = mediaOperations().openPictures(path, [this](PictureAnswer answer) {
        const std::scoped_lock lock(mutex_);
        answers_.push_back(std::move(answer));
        answered_.notify_all();
    });
}

void PictureServer::ask(PictureRequest request) {
    request.number = ++asked_;
    request.width = request.width > 0 ? request.width : kWidth;
    request.height = request.height > 0 ? request.height : kHeight;
    service_->ask(request);
}

int PictureServer::await(bool exact) {
    constexpr std::chrono::seconds kTooLong(60);
    std::unique_lock lock(mutex_);
    const auto isIt = [&](const PictureAnswer& answer) {
        return answer.request.number == asked_ && (answer.exact || !exact);
    };
    const bool came =
        answered_.wait_for(lock, kTooLong, [&] { return std::ranges::any_of(answers_, isIt); });
    if (!came) {
        ADD_FAILURE() << "no answer";
        return kNoNumber;
    }
    last_ = *std::ranges::find_if(answers_, isIt);
    return last_.pixels.empty()
               ? kNoNumber
               : numberIn(reinterpret_cast<const std::uint8_t*>(last_.pixels.data()), last_.width,
                          last_.height, 4);
}

int PictureServer::awaitExact() {
    return await(true);
}

int PictureServer::shown(const PictureRequest& request) {
    ask(request);
    return await(true);
}

int PictureServer::shownFirst(const PictureRequest& request) {
    ask(request);
    return await(false);
}

void PictureServer::expectColour(int x, int y, int red, int green, int blue) const {
    const std::uint32_t pixel = last_.pixels.at(static_cast<std::size_t>(y * last_.width + x));
    constexpr int kNear = 6;
    EXPECT_NEAR(static_cast<int>(pixel >> 16 & 0xFF), red, kNear);
    EXPECT_NEAR(static_cast<int>(pixel >> 8 & 0xFF), green, kNear);
    EXPECT_NEAR(static_cast<int>(pixel & 0xFF), blue, kNear);
}

} // namespace velmora::test
