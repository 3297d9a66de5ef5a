#include "Chapters.h"

#include "TimeBases.h"

#include <algorithm>
#include <span>
#include <utility>

namespace velmora {
namespace {

struct FreeChapter {
    void operator()(AVChapter* chapter) const noexcept {
        av_dict_free(&chapter->metadata);
        av_free(chapter);
    }
};
using ChapterHandle = std::unique_ptr<AVChapter, FreeChapter>;

/// The output frees its chapters with itself.
int append(ChapterHandle chapter, AVFormatContext& output) {
    auto count = static_cast<int>(output.nb_chapters);
    const int result =
        av_dynarray_add_nofree(static_cast<void*>(&output.chapters), &count, chapter.get());
    if (result >= 0) {
        chapter.release(); // NOLINT(bugprone-unused-return-value): the output's now
        output.nb_chapters = static_cast<unsigned>(count);
    }
    return result;
}

} // namespace

int copyChapters(const AVFormatContext& input, const ChapterStretch& stretch,
                 AVFormatContext& output) {
    const std::int64_t shift = stretch.outputUs - stretch.startUs;
    for (const AVChapter* from : std::span(input.chapters, input.nb_chapters)) {
        const std::int64_t begin = av_rescale_q(from->start, from->time_base, kMicrosecond);
        const std::int64_t end = av_rescale_q(from->end, from->time_base, kMicrosecond);
        if (begin >= stretch.endUs || end <= stretch.startUs) {
            continue;
        }
        ChapterHandle chapter(static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter))));
        if (chapter == nullptr) {
            return AVERROR(ENOMEM);
        }
        chapter->id = static_cast<std::int64_t>(output.nb_chapters); // each its own
        chapter->time_base = kMicrosecond;
        chapter->start = std::max(begin, stretch.startUs) + shift;
        chapter->end = std::min(end, stretch.endUs) + shift;
        int result = av_dict_copy(&chapter->metadata, from->metadata, 0);
        if (result >= 0) {
            result = append(std::move(chapter), output);
        }
        if (result < 0) {
            return result;
        }
    }
    return 0;
}

} // namespace velmora
