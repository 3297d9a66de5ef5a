#pragma once

#include "PeakPlan.h"
#include "PeakTable.h"
#include "StopFlag.h"

#include <QObject>
#include <QString>
#include <QThreadPool>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QTimer;

namespace velmora {

/// Finds out about one file's sound on two threads of its own, which stand back behind all others,
/// and not at all while a run is at work. What is visible comes first. Main thread.
class SoundPeaksReader : public QObject {
    Q_OBJECT

public:
    explicit SoundPeaksReader(QObject* parent = nullptr);
    /// Ends the reading.
    ~SoundPeaksReader() override;
    SoundPeaksReader(const SoundPeaksReader&) = delete;
    SoundPeaksReader& operator=(const SoundPeaksReader&) = delete;

    /// The sound of this file is to be read; what was known of another is forgotten.
    void read(const QString& path, std::int64_t lengthUs);
    /// No file any more.
    void clear();
    /// This part is to be known first.
    void setVisible(std::int64_t beginUs, std::int64_t endUs);

    const PeakTable& peaks() const { return peaks_; }
    /// Whether all is known that can be.
    bool isDone() const;

Q_SIGNALS:
    /// More is known, or it is another file.
    void changed();
    /// All is known that can be.
    void done();

private:
    static constexpr std::size_t kWorkers = 2;

    /// One file, between two stops; each worker has a source of its own.
    struct Work {
        StopFlag stop{0};
        std::string path;
        std::array<std::unique_ptr<PeakSource>, kWorkers> sources;
    };

    void resume();
    void pause();
    void followRuns();
    void startNext(std::size_t worker);
    static void carryOut(SoundPeaksReader* self, const std::shared_ptr<Work>& work,
                         std::size_t worker, PeakBlocks wanted);
    void take(const std::shared_ptr<Work>& work, std::int64_t block, std::vector<SoundPeak> peaks);
    void end(const std::shared_ptr<Work>& work, std::size_t worker, PeaksEnd how);
    bool isMissing(std::int64_t block) const;

    PeakTable peaks_;
    QString path_;
    PeakBlocks all_;
    PeakBlocks visible_;
    std::shared_ptr<Work> work_; ///< null while nothing is read
    std::array<std::optional<PeakBlocks>, kWorkers> inHand_;
    QTimer* watch_;    ///< a child of this; looks whether a run is at work
    QThreadPool pool_; ///< last, so that all it uses outlives it
};

} // namespace velmora
