#include "ConverterThread.h"

#include "CommonAction.h"
#include "ConversionEngine.h"
#include "LeadingNumber.h"
#include "MediaOperations.h"
#include "PlatformLog.h"
#include "SharedState.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

namespace velmora {
namespace {

constexpr int kPathSize = 256; // of a new row; the paths that replace them may be longer
constexpr std::int64_t kBitsPerKilobit = 1000;
constexpr float kMsPerSecond = 1000.0F;

using NamedCodec = std::pair<const char*, AVCodecID>;

constexpr std::array kAudioEncoders = {
    NamedCodec{"MP3", AV_CODEC_ID_MP3}, NamedCodec{"WMA8", AV_CODEC_ID_WMAV2},
    NamedCodec{"AAC", AV_CODEC_ID_AAC}, NamedCodec{"VORBIS", AV_CODEC_ID_VORBIS}};
constexpr std::array kVideoEncoders = {
    NamedCodec{"MPEG4", AV_CODEC_ID_MPEG4}, NamedCodec{"H264", AV_CODEC_ID_H264},
    NamedCodec{"WMV2", AV_CODEC_ID_WMV2}, NamedCodec{"FLV", AV_CODEC_ID_FLV1}};

template <typename Encoders>
std::optional<AVCodecID> codecNamed(const Encoders& encoders, const QString& name) {
    const auto* const found =
        std::ranges::find_if(encoders, [&](const auto& encoder) { return name == encoder.first; });
    return found != encoders.end() ? std::optional(found->second) : std::nullopt;
}

std::int32_t bitsPerSecond(const QString& kilobits) {
    return truncated(static_cast<double>(leadingInteger(kilobits) * kBitsPerKilobit));
}

QString firstWord(const QString& text) {
    return text.section(' ', 0, 0);
}

std::int32_t partOfResolution(const QString& resolution, int part) {
    return leadingInteger(resolution.section('x', part, part));
}

/// Fills the engine's tables and settings from one request.
class Filling {
public:
    Filling(ConversionEngine& engine, const RunRequest& request)
        : engine_(engine), request_(request) {}

    void fill();

private:
    void prepareTables();
    void fillItem(std::size_t index);
    void fillTimes(std::size_t index);
    void fillAudio();
    void fillVideo();

    ConversionEngine& engine_;
    const RunRequest& request_;
};

void Filling::fill() {
    prepareTables();
    // A longer job is refused by the engine; its tables end here.
    const std::size_t count = std::min(request_.items.size(), ConversionEngine::kMaxInputs);
    for (std::size_t i = 0; i < count; ++i)
        fillItem(i);
}

void Filling::prepareTables() {
    engine_.jobCount = static_cast<std::int32_t>(request_.items.size());
    engine_.inputCount = static_cast<std::int32_t>(request_.items.size());
    engine_.inputPaths = ConversionEngine::allocStringTable(engine_.inputCount, kPathSize);
    engine_.outputPaths = ConversionEngine::allocStringTable(engine_.inputCount, kPathSize);
    engine_.currentPercent = -1;
    engine_.joinTotalMs = 0;
    engine_.videoCodecChosen = 0;
    platformLog(QString::asprintf("len:%d", engine_.inputCount));
}

void Filling::fillItem(std::size_t index) {
    engine_.inputPaths[index] = request_.items[index].inputFile.toStdString();
    engine_.outputPaths[index] = request_.job.fullPath.toStdString();
    fillTimes(index);
    fillAudio();
    fillVideo();
}

// The joiner's items are in seconds and are divided all the same: their sum ends up as the whole
// seconds that the engine's `joinTotalMs` is counted in.
void Filling::fillTimes(std::size_t index) {
    const NodeInfo& item = request_.items[index];
    const double start = item.startTime / kMsPerSecond;
    const double end = item.endTime / kMsPerSecond;
    engine_.startTimes[index] = start;
    engine_.endTimes[index] = end;
    platformLog(QString::asprintf("curNode.start:%f, curNode.end:%f",
                                  static_cast<double>(item.startTime),
                                  static_cast<double>(item.endTime)));
    if (request_.job.isCutter != 0)
        engine_.spans[index] = end - start;
    else
        engine_.joinTotalMs = truncated(engine_.joinTotalMs + end * 1000.0);
}

void Filling::fillAudio() {
    const NodeSetting& setting = request_.setting;
    engine_.audioBitRate = bitsPerSecond(setting.aBitrate);
    engine_.audioChannels = leadingInteger(setting.aChannels);
    engine_.audioSampleRate = leadingInteger(setting.aSamplerate);
    platformLog(
        QString("bitrate:%1, ch:%2, sample:%3 encoder:%4")
            .arg(setting.aBitrate, setting.aChannels, setting.aSamplerate, setting.aEncoder));
    engine_.audioCodecId = codecNamed(kAudioEncoders, setting.aEncoder)
                               .value_or(static_cast<AVCodecID>(request_.audioCodecId));
}

void Filling::fillVideo() {
    const NodeSetting& setting = request_.setting;
    engine_.videoBitRate = bitsPerSecond(setting.vBitrate);
    engine_.videoFrameRate = leadingDecimal(setting.vFrameRate);
    engine_.videoWidth = setting.width;
    engine_.videoHeight = setting.height;
    platformLog(QString::asprintf("vbitrate:%d, framerate:%f, width:%d height:%d",
                                  engine_.videoBitRate, engine_.videoFrameRate, engine_.videoWidth,
                                  engine_.videoHeight));
    const auto codec = codecNamed(kVideoEncoders, setting.vEncoder);
    engine_.videoCodecId = codec.value_or(static_cast<AVCodecID>(request_.videoCodecId));
    if (codec)
        engine_.videoCodecChosen = 1;
}

} // namespace

RunRequest RunRequest::of(const ConverterInfo& job) {
    const ConversionEngine& engine = ConversionEngine::instance();
    RunRequest request{.job = job,
                       .items = {},
                       .setting = {},
                       .videoCodecId = engine.videoCodecId,
                       .audioCodecId = engine.audioCodecId};
    const std::int32_t count = CommonAction::getSeleteCount();
    for (std::int32_t i = 0; i < count; ++i)
        request.items.push_back(*CommonAction::getSeleteObject(i));
    if (currentSetting)
        request.setting = *currentSetting;
    return request;
}

void ConverterThread::beginConverter(const ConverterInfo& job) {
    fill(RunRequest::of(job));
    ConversionEngine::instance().run();
}

void ConverterThread::fill(const RunRequest& request) {
    const ConverterInfo& job = request.job;
    platformLog(
        QString("uuuuuuuuu(path:%1 %2)").arg(job.fullPath, QString::number(job.isDirectly)));
    ConversionEngine& engine = ConversionEngine::instance();
    Filling(engine, request).fill();
    engine.currentIndex = -1;
    engine.stopRequested = 0;
    engine.currentPercent = 0;
    engine.joinMode = job.isCutter == 0 ? 1 : 0;
    engine.reencode = job.isDirectly == 0 ? 1 : 0;
}

void ConverterThread::copyProbeToSetting() {
    if (!currentSetting)
        return;
    NodeSetting& setting = *currentSetting;
    const ConversionEngine& engine = ConversionEngine::instance();
    const auto nameOf = [](std::int32_t codec) {
        return QString::fromUtf8(mediaOperations().codecName(codec));
    };
    setting.width = engine.sourceWidth;
    setting.height = engine.sourceHeight;
    setting.vBitrate = QString::number(engine.videoBitRate);
    setting.vFrameRate = QString::asprintf("%f", engine.sourceFrameRate);
    setting.vEncoder = nameOf(engine.videoCodecId);
    setting.aBitrate = QString::number(engine.audioBitRate);
    setting.aSamplerate = QString::number(engine.audioSampleRate);
    setting.aChannels = QString::number(engine.audioChannels);
    setting.aEncoder = nameOf(engine.audioCodecId);
    platformLog(QString("\n************************\nVideo:\nenc:%1   bitrate:%2  framerate:%3\n"
                        "Audio:\nenc:%4   bitrate:%5\n************************\n")
                    .arg(setting.vEncoder, setting.vBitrate, setting.vFrameRate, setting.aEncoder,
                         setting.aBitrate));
}

std::int32_t ConverterThread::getChannel(const QString& text) {
    return leadingInteger(firstWord(text));
}

std::int32_t ConverterThread::getBitRate(const QString& kilobits) {
    return bitsPerSecond(firstWord(kilobits));
}

std::int32_t ConverterThread::getSamplerate(const QString& text) {
    return leadingInteger(firstWord(text));
}

double ConverterThread::getFrameRate(const QString& text) {
    return leadingDecimal(firstWord(text));
}

std::int32_t ConverterThread::getWidthFromResolution(const QString& resolution) {
    return partOfResolution(resolution, 0);
}

std::int32_t ConverterThread::getHeightFromResolution(const QString& resolution) {
    return partOfResolution(resolution, 1);
}

QString ConverterThread::getExt(const QString& fileType) {
    constexpr int beforeExtension = 2;
    const qsizetype mark = fileType.indexOf("*.");
    if (mark < 0)
        throw std::invalid_argument("a file type without \"*.\"");
    QString extension = fileType.mid(mark + beforeExtension);
    extension.chop(1);
    return extension;
}

QString ConverterThread::getFileNameExceptExtensiton(const QString& path) {
    return QFileInfo(path).baseName();
}

} // namespace velmora
