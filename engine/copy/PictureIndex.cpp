#include "PictureIndex.h"

#include "TimeBases.h"

#include <algorithm>

namespace velmora {
namespace {

// No codec puts more pictures between a picture's decoding and its showing.
constexpr int kMostReordered = 17;
// Before the end, so that it is among what is read whatever the container takes for a place.
constexpr std::int64_t kBeforeEndUs = 2'000'000;

std::span<const IndexedPicture> recentOf(const std::vector<IndexedPicture>& list) {
    return std::span(list).last(std::min(list.size(), static_cast<std::size_t>(kMostReordered)));
}

bool hasTwin(const std::vector<IndexedPicture>& list, std::int64_t time) {
    return std::ranges::find(recentOf(list), time, &IndexedPicture::time) != recentOf(list).end();
}

/// How many of the pictures read before are shown after this time.
int heldBefore(const std::vector<IndexedPicture>& list, std::int64_t time) {
    return static_cast<int>(std::ranges::count_if(
        recentOf(list), [time](const IndexedPicture& picture) { return picture.time > time; }));
}

/// Decoded, but not shown.
bool isHidden(const AVPacket& packet) {
    return (packet.flags & AV_PKT_FLAG_DISCARD) != 0;
}

class IndexReader {
public:
    IndexReader(CodedPictures& pictures, const CutRule& rule) : pictures_(pictures), rule_(rule) {}

    PictureIndex read();

private:
    bool readInto(std::vector<IndexedPicture>& list);
    bool isStartKnown(const std::vector<IndexedPicture>& list) const;
    void readStart();
    void readEnd();
    bool hasReachedEnd() const { return behindEnd_ >= kMostReordered; }

    CodedPictures& pictures_;
    const CutRule& rule_;
    PictureIndex index_;
    int behindEnd_ = 0;                   ///< pictures of the list that are shown after the window
    std::int64_t entry_ = AV_NOPTS_VALUE; ///< the first that is wanted
    int behindEntry_ = 0;                 ///< pictures shown after it
};

PictureIndex IndexReader::read() {
    readStart();
    if (!index_.around.startIsWhole && rule_.end != CutRule::kToTheEnd && index_.trouble.empty()) {
        readEnd();
    }
    return std::move(index_);
}

/// False: there is no picture any more, or one that cannot be copied.
bool IndexReader::readInto(std::vector<IndexedPicture>& list) {
    const PacketHandle packet = pictures_.next();
    if (packet == nullptr) {
        return false;
    }
    index_.trouble = pictures_.troubleWith(*packet);
    if (index_.trouble.empty() && isHidden(*packet) && rule_.wants(packet->pts)) {
        index_.trouble = "its container hides some of its pictures.";
    }
    if (index_.trouble.empty() && hasTwin(list, packet->pts)) {
        index_.trouble = "two of its pictures have the same time.";
    }
    if (!index_.trouble.empty()) {
        return false;
    }
    if (isHidden(*packet)) {
        return true;
    }
    const bool isEntry = pictures_.isEntry(*packet);
    index_.depth = std::max(index_.depth, heldBefore(list, packet->pts));
    if (packet->dts != AV_NOPTS_VALUE) {
        index_.decodedAt[packet->pts] = packet->dts;
    }
    list.push_back({packet->pts, isEntry});
    behindEnd_ += packet->pts >= rule_.end ? 1 : 0;
    if (entry_ != AV_NOPTS_VALUE) {
        behindEntry_ += packet->pts > entry_ ? 1 : 0;
    } else if (isEntry && rule_.wants(packet->pts)) {
        entry_ = packet->pts;
    }
    return true;
}

/// Whether enough is known of the beginning of a window whose end lies elsewhere.
bool IndexReader::isStartKnown(const std::vector<IndexedPicture>& list) const {
    if (rule_.end != CutRule::kToTheEnd && rule_.end - rule_.start <= 2 * rule_.farthestEntry) {
        return false; // its end comes soon
    }
    if (entry_ == AV_NOPTS_VALUE) {
        return list.back().time > rule_.start + 2 * rule_.farthestEntry;
    }
    return behindEntry_ >= kMostReordered && list.back().time > entry_ + 2 * rule_.leastCopied;
}

void IndexReader::readStart() {
    std::vector<IndexedPicture>& list = index_.around.start;
    if (pictures_.goTo(rule_.start) < 0) {
        return;
    }
    do {
        if (!readInto(list)) {
            index_.around.startIsWhole = index_.trouble.empty();
            return;
        }
    } while (list.empty() || (!hasReachedEnd() && !isStartKnown(list)));
    index_.around.startIsWhole = hasReachedEnd();
}

void IndexReader::readEnd() {
    const std::int64_t back =
        av_rescale_q(kBeforeEndUs, kMicrosecond, pictures_.stream().time_base);
    if (pictures_.goTo(rule_.end - back) < 0) {
        return;
    }
    behindEnd_ = 0;
    while (!hasReachedEnd() && readInto(index_.around.end)) {
    }
    if (index_.around.end.empty() && index_.trouble.empty()) {
        index_.trouble = "its end cannot be read.";
    }
}

} // namespace

PictureIndex readIndex(CodedPictures& pictures, const CutRule& rule) {
    return IndexReader(pictures, rule).read();
}

} // namespace velmora
