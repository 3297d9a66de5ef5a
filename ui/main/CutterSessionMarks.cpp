// The bar and the marks of a session.

#include "CustomSlider.h"
#include "CutterSession.h"
#include "LeadingNumber.h"
#include "PlatformLog.h"
#include "SharedState.h"
#include "TimeText.h"
#include "cutterWinController.h"

#include <algorithm>

namespace velmora {

void CutterSession::sliderClear() {
    bar_.setAnchorLeft(-1);
    bar_.setAnchorRight(-1);
    bar_.setButIndex(0);
}

void CutterSession::viewValueReset() {
    bar_.setDoubleValue(0);
    for (QLineEdit* const field : {&start_, &end_, &length_}) {
        field->setText(timeText(0));
    }
    position_.setText(positionText(0, 0));
}

void CutterSession::setPosition(double value) {
    at_.setByBar(value, mDuration);
    Q_EMIT events_.positionMoved(at_.us());
}

void CutterSession::showPositionText() {
    position_.setText(at_.text() + '/' + timeText(mDuration));
}

void CutterSession::showPosition(double value) {
    setPosition(value);
    platformLog(QString::asprintf("get slider:%f", bar_.doubleValue()));
    showPositionText();
}

void CutterSession::scrubTo(double value) {
    setPosition(value);
    showPositionText();
    preview_.showAt(filename_, at_.seconds());
}

void CutterSession::goTo(std::int64_t us) {
    if (mDuration > 0) {
        const auto lengthUs = static_cast<std::int64_t>(static_cast<double>(mDuration) * 1e6);
        const std::int64_t there = std::clamp<std::int64_t>(us, 0, lengthUs);
        at_.beginGoingTo(there);
        bar_.moveByUser(static_cast<double>(there) / (static_cast<double>(mDuration) * 10'000.0));
        at_.endGoing();
    }
}

void CutterSession::goToMark(std::optional<std::int64_t> us) {
    if (us) {
        goTo(*us);
    }
}

void CutterSession::tellMarks(std::int64_t startMs, std::int64_t endMs) {
    told_ = {startMs, endMs};
    Q_EMIT events_.marksMoved(startMs, endMs);
    direct_.ask(filename_, startMs, endMs);
}

void CutterSession::markStart() {
    if (!mAddFileInitialized) {
        return;
    }
    closePanel();
    const bool endMoved = marks_.markStartMs(at_.ms(), mDuration);
    setInfoParameter("cutStartTime", QString::number(marks_.mStartValMs));
    start_.setText(at_.text());
    exactStart_ = {start_.text(), at_.us()};
    bar_.setAnchorLeft(bar_.getCurrenPosInt());
    bar_.setButIndex(1);
    bar_.update();
    if (endMoved) {
        end_.setText(timeText(mDuration));
        exactEnd_ = {end_.text(), lengthUs_};
    }
    setTextFieldDuration();
    tellMarks(marks_.mStartValMs, marks_.mEndValMs);
}

void CutterSession::markEnd() {
    if (!mAddFileInitialized) {
        return;
    }
    closePanel();
    const bool startMoved = marks_.markEndMs(at_.ms());
    setInfoParameter("cutEndTime", QString::number(marks_.mEndValMs));
    end_.setText(at_.text());
    exactEnd_ = {end_.text(), at_.us()};
    bar_.setAnchorRight(bar_.getCurrenPosInt());
    bar_.setButIndex(2);
    bar_.update();
    if (startMoved) {
        start_.setText(timeText(0));
    }
    setTextFieldDuration();
    tellMarks(marks_.mStartValMs, marks_.mEndValMs);
}

void CutterSession::setTextFieldDuration() {
    length_.setText(timeText(toSeconds(marks_.lengthMs())));
}

std::int64_t CutterSession::getTextFieldValueMs(std::int64_t which) const {
    switch (which) {
    case 1:
        return marks_.mStartValMs;
    case 2:
        return marks_.mEndValMs;
    default:
        return -1;
    }
}

void CutterSession::timesTyped() {
    const std::int32_t start = cutterWinController::parseSpecificStringToMs(start_.text());
    const std::int32_t end = cutterWinController::parseSpecificStringToMs(end_.text());
    if (static_cast<float>(start) != currentSetting->cutStartTime ||
        static_cast<float>(end) != currentSetting->cutEndTime) {
        closePanel(); // it would cut by the times it was opened with
    }
    if (start >= 0 && end >= 0) {
        length_.setText(timeText(toSeconds(end - start)));
        tellMarks(start, end);
    }
}

void CutterSession::setInfoParameter(const QString& key, const QString& value) {
    if (key == "width") {
        currentSetting->width = leadingInteger(value);
    } else if (key == "height") {
        currentSetting->height = leadingInteger(value);
    } else if (key == "cutStartTime") {
        currentSetting->cutStartTime = static_cast<float>(leadingDecimal(value));
    } else if (key == "cutEndTime") {
        currentSetting->cutEndTime = static_cast<float>(leadingDecimal(value));
    }
}

} // namespace velmora
