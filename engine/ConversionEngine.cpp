#include "ConversionEngine.h"

#include "HeapSettings.h"
#include "Job.h"
#include "MediaOperations.h"

#include <algorithm>
#include <cstring>

namespace velmora {

ConversionEngine& ConversionEngine::instance() {
    static ConversionEngine engine;
    return engine;
}

ConversionEngine::ConversionEngine() {
    keepFreedMemory();
    reset();
}

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

std::int32_t ConversionEngine::probe() {
    return mediaOperations().probe(*this);
}

void ConversionEngine::run() {
    run(Job(*this));
}

RunReport ConversionEngine::run(const Job& job) {
    return mediaOperations().run(job, *this);
}

std::int32_t ConversionEngine::snapshot() {
    return mediaOperations().snapshot(*this);
}

} // namespace velmora
