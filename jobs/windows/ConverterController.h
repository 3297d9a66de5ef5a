#pragma once

#include "AlertPanel.h"
#include "ConverterInfo.h"
#include "RunResults.h"
#include "SharedState.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <memory>

class QProgressBar;
class QWidget;

namespace velmora {

class ConversionRun;
class ProgressWindow;

/// Asks for runs and owns the window that shows how far they are. Twice a second it looks at the
/// engine's counters, has results put into the items and, once for each run, tells the outcome.
///
/// A run goes on when its window is closed by the close box. Then the next one waits for it, behind
/// its own window, also when another controller has started it. Main thread.
class ConverterController : public QObject {
    Q_OBJECT

public:
    /// The window stays above `owner`, which outlives the controller; null: it belongs to no other.
    explicit ConverterController(QWidget* owner = nullptr);
    /// Asks a run that still goes on to stop and waits for it.
    ~ConverterController() override;
    ConverterController(const ConverterController&) = delete;
    ConverterController& operator=(const ConverterController&) = delete;

    /// Runs the job over the shared list and shows the window modally. Returns when the window has
    /// been closed or the run has ended.
    void showConverterFrom(const ConverterInfo& job);
    /// What the timer does: brings window and items up to date.
    void refreshProgree();
    /// Puts the results so far into the items and ends the modal session. Always true.
    bool windowShouldClose();
    /// What the Cancel button does: stops the run and closes the window. No outcome is told.
    void closeFrom();

    QProgressBar* singleProgress() const { return singleProgress_; }
    void setSingleProgress(QProgressBar* bar) { singleProgress_ = bar; }
    QProgressBar* totleProgress() const { return totleProgress_; }
    void setTotleProgress(QProgressBar* bar) { totleProgress_ = bar; }

private:
    void loadWindow();
    void awaitTurn();
    void followRun();

    void showStart();
    void showRun(bool ended);
    void showItem();
    void showTotal();
    void showTime();

    FileList items() const;
    static bool countersAreOf(const ConversionRun* run);
    void copyStatesSoFar();
    static RunOutcome collectOutcomeOf(const ConversionRun* run);
    void endWith(RunOutcome outcome);
    static AlertMore toTellOf(const ConversionRun* run);
    static void tell(RunOutcome outcome, const AlertMore& more);
    void performClose();
    void stopOwnSession();

    QWidget* owner_;
    std::unique_ptr<ProgressWindow> winConverterController_;
    QProgressBar* singleProgress_ = nullptr; ///< 0 to 100; the window's
    QProgressBar* totleProgress_ = nullptr;  ///< 0 to 100; the window's
    QTimer* refreshTimer_;                   ///< a child of this
    std::int32_t iConverted_ = 0;            ///< not used
};

} // namespace velmora
