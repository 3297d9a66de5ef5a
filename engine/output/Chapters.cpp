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

int copyChapters(const AVFormatContext& input, std::int64_t startUs, std::int64_t endUs,
                 AVFormatContext& output) {
    for (const AVChapter* from : std::span(input.chapters, input.nb_chapters)) {
        const std::int64_t begin = av_rescale_q(from->start, from->time_base, kMicrosecond);
        const std::int64_t end = av_rescale_q(from->end, from->time_base, kMicrosecond);
        if (begin >= endUs || end <= startUs) {
            continue;
        }
        ChapterHandle chapter(static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter))));
        if (chapter == nullptr) {
            return AVERROR(ENOMEM);
        }
        chapter->id = from->id;
        chapter->time_base = kMicrosecond;
        chapter->start = std::max(begin, startUs) - startUs;
        chapter->end = std::min(end, endUs) - startUs;
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
