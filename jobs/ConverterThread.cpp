#include "ConverterThread.h"

#include "CommonAction.h"
#include "ConversionEngine.h"
#include "EncoderNames.h"
#include "Job.h"
#include "LeadingNumber.h"
#include "MediaOperations.h"
#include "PlatformLog.h"
#include "SharedState.h"

#include <QFileInfo>

#include <stdexcept>

namespace velmora {
namespace {

constexpr float kMsPerSecond = 1000.0F;

QString firstWord(const QString& text) {
    return text.section(' ', 0, 0);
}

std::int32_t partOfResolution(const QString& resolution, int part) {
    return leadingInteger(resolution.section('x', part, part));
}

// The joiner's items are in seconds and are divided all the same: a job adds their lengths up as
// whole seconds.
void addItem(Job& job, const NodeInfo& item, const QString& output) {
    job.add(item.inputFile.toStdString(), output.toStdString(), item.startTime / kMsPerSecond,
            item.endTime / kMsPerSecond);
    platformLog(QString::asprintf("curNode.start:%f, curNode.end:%f",
                                  static_cast<double>(item.startTime),
                                  static_cast<double>(item.endTime)));
}

void setAudio(Job& job, const RunRequest& request) {
    const NodeSetting& setting = request.setting;
    platformLog(
        QString("bitrate:%1, ch:%2, sample:%3 encoder:%4")
            .arg(setting.aBitrate, setting.aChannels, setting.aSamplerate, setting.aEncoder));
    job.audio = {.codec = codecNamed(kAudioEncoders, setting.aEncoder.toStdString())
                              .value_or(static_cast<AVCodecID>(request.audioCodecId)),
                 .bitRate = bitsPerSecond(leadingInteger(setting.aBitrate)),
                 .sampleRate = leadingInteger(setting.aSamplerate),
                 .channels = leadingInteger(setting.aChannels)};
}

void setVideo(Job& job, const RunRequest& request) {
    const NodeSetting& setting = request.setting;
    const auto chosen = codecNamed(kVideoEncoders, setting.vEncoder.toStdString());
    const std::int32_t bitRate = bitsPerSecond(leadingInteger(setting.vBitrate));
    job.videoCodecChosen = chosen.has_value();
    job.video = {.codec = chosen.value_or(static_cast<AVCodecID>(request.videoCodecId)),
                 .bitRate = bitRate,
                 .width = setting.width,
                 .height = setting.height,
                 .frameRate = leadingDecimal(setting.vFrameRate)};
    platformLog(QString::asprintf("vbitrate:%d, framerate:%f, width:%d height:%d", bitRate,
                                  job.video.frameRate, job.video.width, job.video.height));
}

/// The request in the engine's units. The settings are told, and thus set, with each item.
Job jobOf(const RunRequest& request) {
    Job job;
    job.joins = request.job.isCutter == 0;
    job.reencodes = request.job.isDirectly == 0;
    platformLog(QString("len:%1").arg(request.items.size()));
    for (const NodeInfo& item : request.items) {
        addItem(job, item, request.job.fullPath);
        setAudio(job, request);
        setVideo(job, request);
    }
    return job;
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
    for (std::int32_t i = 0; i < count; ++i) {
        request.items.push_back(*CommonAction::getSeleteObject(i));
    }
    if (currentSetting) {
        request.setting = *currentSetting;
    }
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
    engine.currentPercent = -1; // until the run can begin
    load(engine, jobOf(request));
}

void ConverterThread::addExactPart(const RunRequest& request, Job& job) {
    const ConverterInfo& asked = request.job;
    job.exact = asked.exact;
    if (job.exact && job.joins) {
        job.video.frameRate = 0.0; // each file keeps its own
    } else if (job.exact) {
        job.windows.assign(request.items.size(), {asked.startMs, asked.endMs});
    }
}

void ConverterThread::copyProbeToSetting() {
    if (!currentSetting) {
        return;
    }
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
    return bitsPerSecond(leadingInteger(firstWord(kilobits)));
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
    constexpr int kMarkLength = 2;
    const qsizetype mark = fileType.indexOf("*.");
    if (mark < 0) {
        throw std::invalid_argument("a file type without \"*.\"");
    }
    QString extension = fileType.mid(mark + kMarkLength);
    extension.chop(1);
    return extension;
}

QString ConverterThread::getFileNameExceptExtensiton(const QString& path) {
    return QFileInfo(path).baseName();
}

} // namespace velmora
