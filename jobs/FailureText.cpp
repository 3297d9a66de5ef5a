#include "FailureText.h"

#include <QFileInfo>
#include <QLocale>

#include <array>

namespace velmora {
namespace {

using Kind = FailureCause::Kind;

/// What is said of each kind. %1 is the file's name, %2 its folder, %3 the library's text, %4 the
/// codec, %5 what would do.
const char* patternOf(Kind kind) {
    switch (kind) {
    case Kind::None:
        return "";
    case Kind::InputMissing:
        return "“%1” is no longer in its folder. Put it back, or add it from where it is now.";
    case Kind::InputNotReadable:
        return "“%1” may not be read. Ask its owner for permission, or copy it.";
    case Kind::InputIsEmpty:
        return "“%1” is empty. Copy or download it again.";
    case Kind::InputIsNoMedia:
        return "“%1” is no video that can be read, or is damaged. Try to play it; if that fails, "
               "copy or download it again.";
    case Kind::InputIsCut:
        return "“%1” is incomplete: what is needed to read it is missing. Copy or download it "
               "again.";
    case Kind::InputIsEncrypted:
        return "“%1” is encrypted. Only a copy without protection can be used.";
    case Kind::NoDecoder:
        return "The pictures of “%1” are of a kind that cannot be decoded here. Convert it with "
               "the "
               "program that made it.";
    case Kind::NoPictures:
        return "“%1” has no pictures that can be decoded. Choose a file with a video.";
    case Kind::NoFrameRate:
        return "“%1” does not tell its frame rate. Choose re-encoding, with a frame rate.";
    case Kind::UnknownLength:
        return "“%1” does not tell how long it is. Save it again with the program that made it.";
    case Kind::NothingBetweenTimes:
        return "There is no picture between both times in “%1”. Set the end later, or the start "
               "earlier.";
    case Kind::FolderMissing:
        return "The folder “%2” does not exist. Choose another folder.";
    case Kind::NotWritable:
        return "“%1” cannot be written in “%2”: %3. Choose another folder or name.";
    case Kind::DiskFull:
        return "The disk of “%2” is full. Free some space, or choose another folder.";
    case Kind::FileTooLarge:
        return "“%1” became larger than its file system allows. Choose a folder on another disk.";
    case Kind::OutputIsInput:
        return "“%1” is also a source, or a part of one. Choose another name.";
    case Kind::UnknownContainer:
        return "The ending of “%1” is that of no container. Choose another format.";
    case Kind::ContainerNotUsable:
        return "The format of “%1” is not written as one file. Choose another format.";
    case Kind::CodecNotTaken:
        return ""; // see sentenceOfCodec()
    case Kind::EncoderMissing:
        return "“%4” cannot be encoded here. Choose another codec.";
    case Kind::SizeRefused:
        return "Pictures of this size cannot be encoded as “%4”. The nearest size that can: %5.";
    case Kind::RateRefused:
        return "This frame rate cannot be encoded as “%4”. Choose %5 pictures a second.";
    case Kind::SoundRefused:
        return "Sound of this sample rate or number of channels cannot be encoded as “%4”. The "
               "nearest that can: %5.";
    case Kind::Other:
        return "“%1”: %3. “Details…” shows what happened.";
    }
    return "";
}

/// Where it is known, how much is needed and free takes the place of the first sentence.
QString sentenceOfFullDisk(const FailureCause& cause) {
    const auto size = [](qint64 bytes) { return QLocale::c().formattedDataSize(bytes); };
    return QString(
               "The disk of “%1” is full: about %2 are needed, %3 are free. Free some space, or "
               "choose another folder.")
        .arg(QFileInfo(QString::fromStdString(cause.path)).absolutePath(), size(cause.neededBytes),
             size(cause.freeBytes));
}

QString sentenceOfCodec(const FailureCause& cause) {
    const QString what =
        cause.codec.empty()
            ? QString("This format does not take these pictures or this sound")
            : QString("This format does not take “%1”").arg(QString::fromStdString(cause.codec));
    return cause.choice.empty()
               ? what + ". Choose re-encoding."
               : what + QString(". These do: %1.").arg(QString::fromStdString(cause.choice));
}

} // namespace

QString sentenceOf(const FailureCause& cause) {
    if (cause.kind == Kind::DiskFull && cause.neededBytes > 0) {
        return sentenceOfFullDisk(cause);
    }
    if (cause.kind == Kind::CodecNotTaken) {
        return sentenceOfCodec(cause);
    }
    const QFileInfo file(QString::fromStdString(cause.path));
    const QString pattern = patternOf(cause.kind);
    // The fields may look like places of others: a pattern takes what it wants of them in one go.
    const std::array fields{
        file.fileName(), file.absolutePath(), QString::fromStdString(cause.library),
        QString::fromStdString(cause.codec), QString::fromStdString(cause.choice)};
    QString sentence;
    for (const QChar* at = pattern.constBegin(); at != pattern.constEnd(); ++at) {
        if (*at == '%') {
            ++at;
            sentence += fields.at(static_cast<std::size_t>(at->digitValue() - 1));
        } else {
            sentence += *at;
        }
    }
    return sentence;
}

} // namespace velmora
