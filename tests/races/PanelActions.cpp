#include "Action.h"
#include "Screen.h"

#include <array>

namespace velmora::test {
namespace {

void chooseDirect(Round& /*round*/) {
    clickMark("mRadioDirect");
}

void chooseReencode(Round& /*round*/) {
    clickMark("mRadioReencode");
}

void chooseProfile(Round& round) {
    moveIn("mComboBox", round.random.below(9) - 4);
}

void chooseParameter(Round& round) {
    static const QStringList boxes{"mVideoQuality", "mVideoSize", "mFrameRate", "mAudioQuality",
                                   "mSampleRate"};
    moveIn(round.random.oneOf(boxes), round.random.below(5) - 2);
}

void openList(Round& round) {
    static const QStringList boxes{"mComboBox", "mVideoSize", "comVEncoder", "comVResolution"};
    click(round.random.oneOf(boxes));
}

void typeFolder(Round& round) {
    typeInto("mTextField1", round.files.outputs());
}

/// Mostly a new name, so that most starts are not refused.
void typeName(Round& round) {
    const int number = round.random.oneIn(4) ? 0 : round.random.below(1'000'000);
    typeInto("mTextField2", QString("out-%1").arg(number));
}

void browse(Round& /*round*/) {
    click("mButBrowse");
}

void customize(Round& /*round*/) {
    click("mButCustomize");
}

void start(Round& /*round*/) {
    click("mButStartCut");
    click("mButStartJoin");
}

void settleAndStart(Round& round) {
    typeFolder(round);
    typeName(round);
    start(round);
}

void closePanel(Round& /*round*/) {
    close("mCutterSettingWin");
    close("mJoinerSettingWin");
}

void anyKey(Round& round) {
    constexpr std::array keys{Qt::Key_Tab,    Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Down,
                              Qt::Key_Escape, Qt::Key_Space,   Qt::Key_Up};
    pressKey(round.random.oneOf(keys));
}

void clickMainWindow(Round& round) {
    static const QStringList buttons{"mButtonCutterAdd",   "mButtonCutterSetting",
                                     "segmentVideoJoiner", "segmentVideoCutter",
                                     "mButtonJoinerAdd",   "mButtonJoinerRemove"};
    click(round.random.oneOf(buttons));
}

void chooseInEditor(Round& round) {
    static const QStringList boxes{"comVEncoder", "comVResolution", "comVBitrate", "comVFrameRate",
                                   "comAEncoder", "comASamplerate", "comABitrate", "comAChannels"};
    moveIn(round.random.oneOf(boxes), round.random.below(5) - 2);
}

void confirm(Round& /*round*/) {
    click("btOK");
}

void cancel(Round& /*round*/) {
    click("btCancel");
}

void takeDefaults(Round& /*round*/) {
    click("btDefault");
}

void closeEditor(Round& /*round*/) {
    close("SettingFrom");
}

void closeProgress(Round& /*round*/) {
    close("ConverterFrom");
}

void escape(Round& /*round*/) {
    pressKey(Qt::Key_Escape);
}

void lookOn(Round& round) {
    round.pauseMs = round.random.below(40);
}

void lookOnLonger(Round& round) {
    round.pauseMs = 100 + round.random.below(600);
}

void vanish(Round& round) {
    round.files.vanishOrReturn();
}

constexpr std::array kPanel{
    Action{"chooses direct mode", 5, chooseDirect},
    Action{"chooses re-encoding", 3, chooseReencode},
    Action{"chooses a profile", 2, chooseProfile},
    Action{"chooses a parameter", 2, chooseParameter},
    Action{"opens a list", 1, openList},
    Action{"types the folder", 2, typeFolder},
    Action{"types a name", 2, typeName},
    Action{"browses", 2, browse},
    Action{"customizes", 2, customize},
    Action{"starts", 2, start},
    Action{"fills the panel in and starts", 6, settleAndStart},
    Action{"closes the panel", 2, closePanel},
    Action{"presses a key in the panel", 3, anyKey},
    Action{"clicks behind the panel", 1, clickMainWindow},
    Action{"looks at the panel", 1, lookOn},
};
constexpr std::array kEditor{
    Action{"chooses in the editor", 6, chooseInEditor},
    Action{"opens a list", 1, openList},
    Action{"confirms the editor", 2, confirm},
    Action{"cancels the editor", 1, cancel},
    Action{"takes the defaults", 1, takeDefaults},
    Action{"closes the editor", 1, closeEditor},
    Action{"presses a key in the editor", 2, anyKey},
    Action{"clicks behind the editor", 1, clickMainWindow},
};
constexpr std::array kProgress{
    Action{"cancels the run", 4, cancel},
    Action{"closes the run's window", 3, closeProgress},
    Action{"escapes from the run", 2, escape},
    Action{"presses a key at the run", 1, anyKey},
    Action{"clicks behind the run", 2, clickMainWindow},
    Action{"takes a file away or puts it back", 1, vanish},
    Action{"looks at the run", 4, lookOn},
    Action{"looks at the run for longer", 3, lookOnLonger},
};

} // namespace

Actions panelActions() {
    return kPanel;
}

Actions editorActions() {
    return kEditor;
}

Actions progressActions() {
    return kProgress;
}

} // namespace velmora::test
