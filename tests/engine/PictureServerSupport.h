#pragma once

#include "JobSupport.h"
#include "MediaOperations.h"
#include "NumberedMedia.h"
#include "TestMedia.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace velmora::test {

struct Shown {
    std::int64_t us = 0; ///< position
    int number = kNoNumber;
};

/// The pictures of such a file, as ffmpeg shows them, from the beginning to the end.
std::vector<Shown> allPictures(const std::string& path);

/// A test with a service of pictures, the answers of which are waited for.
class PictureServer : public ::testing::Test {
protected:
    using Kind = PictureRequest::Kind;

    ~PictureServer() override { close(); }

    void open(const std::string& path);
    void close() { service_.reset(); }
    /// In a view of 256 x 128 unless it says otherwise.
    void ask(PictureRequest request);
    /// The number of the picture with which the last request is answered exactly, at first.
    int awaitExact();
    int shown(const PictureRequest& request);
    int shownFirst(const PictureRequest& request);
    int shownAt(int ms) { return shown({.us = ms * 1000}); }
    /// So many pictures from the last one on.
    int stepped(int count) { return shown({.kind = Kind::Step, .us = last_.us, .count = count}); }
    /// The answer that has been waited for last.
    const PictureAnswer& last() const { return last_; }
    void expectColour(int x, int y, int red, int green, int blue) const;

    TemporaryFolder folder_;

private:
    int await(bool exact);

    std::mutex mutex_;
    std::condition_variable answered_;
    std::vector<PictureAnswer> answers_;
    PictureAnswer last_;
    std::uint64_t asked_ = 0;
    std::unique_ptr<PictureService> service_;
};

} // namespace velmora::test
