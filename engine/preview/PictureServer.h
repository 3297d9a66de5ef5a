#pragma once

#include "KeyFrames.h"
#include "PictureSearch.h"
#include "PictureService.h"
#include "StopFlag.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace velmora {

/// The service of one source: a thread that answers requests and, when there is none, decodes what
/// may be asked for next; and one that finds the key frames once the first request has been
/// answered. Log lines of both are dropped: what is wrong with a source, its probe has told.
class PictureServer final : public PictureService {
public:
    PictureServer(std::string path, Sink sink);
    ~PictureServer() override;
    PictureServer(const PictureServer&) = delete;
    PictureServer& operator=(const PictureServer&) = delete;

    void ask(const PictureRequest& request) override;

private:
    using Found = std::optional<PictureSearch::Found>;

    void work();
    void readKeyFrames();
    std::optional<PictureRequest> nextRequest(PictureSearch& search);
    bool isReady() const;
    void takeKeyFrames(PictureSearch& search);
    void serve(PictureSearch& search, const PictureRequest& request);
    void servePosition(PictureSearch& search, const PictureRequest& request, std::int64_t us);
    std::int64_t keyFrameFrom(const PictureRequest& request, std::int64_t us) const;
    void answer(PictureSearch& search, const PictureRequest& request, const Found& found,
                bool exact);

    const std::string path_;
    const Sink sink_;
    StopFlag stop_{0};
    StopFlag giveUp_{0}; ///< raised while a request waits

    std::mutex mutex_; ///< of what follows
    std::condition_variable changed_;
    std::optional<PictureRequest> wanted_;
    std::optional<KeyFrames> keyFrames_;
    bool hasAnswered_ = false;
    bool ending_ = false;

    bool takesKeyFrames_ = true; ///< the worker's own, as what follows
    bool mayFill_ = false;
    std::int64_t groupUs_ = 0; ///< between key frames, in the mean

    std::thread keyReader_; ///< the threads last, so that all they use is there before them
    std::thread worker_;
};

} // namespace velmora
