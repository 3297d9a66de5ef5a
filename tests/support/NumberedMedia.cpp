#include "NumberedMedia.h"

#include "Program.h"

#include <unistd.h>

#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

// The bits of the number are columns of black and white, the least first.
constexpr int kBits = 6;
constexpr int kColumns = 8; // with those that stay black
constexpr const char* kPictures =
    "color=black:size=256x128:rate=25:duration=2,format=gray,"
    "geq=lum='if(lt(X,192),255*mod(floor(N/pow(2,floor(X/32))),2),0)',format=yuv420p";

} // namespace

std::string numberedMedia(const std::string& name, const std::string& options) {
    const fs::path folder = fs::path(VELMORA_TEST_MEDIA) / "numbered" /
                            std::to_string(std::hash<std::string>{}(options));
    fs::path file = folder / name;
    if (fs::exists(file)) {
        return file;
    }
    fs::create_directories(folder);
    std::vector<std::string> command{"ffmpeg", "-v",    "error", "-nostdin", "-y",
                                     "-f",     "lavfi", "-i",    kPictures};
    if (options.find("-c:v") == std::string::npos) {
        command.insert(command.end(), {"-c:v", "libx264", "-preset", "ultrafast"});
    }
    std::istringstream words(options);
    for (std::string word; words >> word;) {
        command.push_back(word);
    }
    // Two processes may make it at the same time; what each puts in place is complete.
    const fs::path unfinished = folder / (std::to_string(getpid()) + "-" + name);
    command.push_back(unfinished);
    const ProgramResult made = runProgram(command);
    if (made.status != 0) {
        throw std::runtime_error("cannot make " + name + ": " + made.errors);
    }
    fs::rename(unfinished, file);
    return file;
}

int numberIn(const std::uint8_t* pixels, int width, int height, int bytesPerPixel) {
    int number = 0;
    for (int bit = 0; bit < kBits; ++bit) {
        const int x = (2 * bit + 1) * width / (2 * kColumns);
        const bool isSet = pixels[(height / 2 * width + x) * bytesPerPixel] > 128;
        number |= isSet ? 1 << bit : 0;
    }
    return number;
}

} // namespace velmora::test
