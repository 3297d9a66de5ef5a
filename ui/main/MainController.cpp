#include "MainController.h"

#include "Bundle.h"
#include "ClosingOnly.h"
#include "CustomSlider.h"
#include "CustomStringOfHyperlink.h"
#include "MainWindow.h"
#include "NotificationCenter.h"
#include "OpenPanel.h"
#include "PlatformLog.h"
#include "PropertyList.h"
#include "SharedState.h"
#include "TimeText.h"
#include "ui_MainWindow.h"

#include <QCoreApplication>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>
#include <QUrl>

namespace velmora {
namespace {

const QString kCutterLabel = QStringLiteral("Video Cutter");
const QString kJoinerLabel = QStringLiteral("Video Joiner");
constexpr int kPanelOk = 1;

} // namespace

MainController::MainController()
    : mainWin_(std::make_unique<MainWindow>()), ui_(mainWin_->outlets()), menu_(*mainWin_),
      cutter_(*mainWin_, requestsOfCutter()), timeline_(ui_, cutter_),
      joiner_(*ui_.tableView, *mainWin_), exactPreview_(*mainWin_, cutter_),
      pictureMoves_(*mainWin_, cutter_, exactPreview_) {
    initWithWindow();
    awakeControls();
    connectActions();
    connectControls();
    windowDidLoad();
}

MainController::~MainController() = default;

CutterSession::Requests MainController::requestsOfCutter() {
    return {[this] {
                closePanels();
                setDefaultView();
            },
            [this] { fileOpen(); }, [this] { return letOthersRun(); }};
}

/// Closing the window is all that the user can do meanwhile.
bool MainController::letOthersRun() const {
    const ClosingOnly closingOnly(*ui_.actionQuit);
    QCoreApplication::processEvents();
    return !terminating_;
}

// Set-up.

void MainController::initWithWindow() {
    platformLog("initWithWindow");
}

void MainController::windowDidLoad() {
    ui_.mCustomImage->setImage(NamedImage(customImageView::kPlaceholderName));
}

/// The bar draws on a canvas that never grows: it gets one for any screen.
void MainController::awakeControls() {
    constexpr int kWidest = 8192;
    ui_.mCustomSlider->resize(kWidest, ui_.mCustomSlider->sizeHint().height());
    ui_.mCustomSlider->awakeFromNib();
}

void MainController::connectActions() {
    const auto on = [this](QPushButton* button, QAction* action, auto handler) {
        connect(button, &QPushButton::clicked, this, handler);
        connect(action, &QAction::triggered, this, handler);
    };
    on(ui_.mButtonCutterAdd, ui_.actionOpen, &MainController::button_cutter_addfile);
    on(ui_.mButtonPlay, ui_.actionPlay, &MainController::button_play);
    on(ui_.mButtonLeft, ui_.actionSetStart, &MainController::button_left_anchor);
    on(ui_.mButtonRight, ui_.actionSetEnd, &MainController::button_right_anchor);
    on(ui_.mButtonCutterSetting, ui_.actionStartCut, &MainController::button_cutter_doit);
    on(ui_.mButtonJoinerRemove, ui_.actionRemove, &MainController::button_joiner_delfile);
    on(ui_.mButtonJoinerSetting, ui_.actionMerge, &MainController::button_joiner_doit);
    connect(ui_.mButtonSetImage, &QPushButton::clicked, this, &MainController::button_load_image);
    connect(ui_.mButtonJoinerAdd, &QPushButton::clicked, this,
            &MainController::button_joiner_addfile);
    connect(ui_.actionHelp, &QAction::triggered, this, &MainController::showHelp);
}

void MainController::connectControls() {
    for (QPushButton* const segment : {ui_.segmentVideoCutter, ui_.segmentVideoJoiner}) {
        connect(segment, &QPushButton::toggled, this, [this](bool checked) {
            if (checked) {
                button_segSelected();
            }
        });
    }
    connect(ui_.mCustomSlider, &CustomSlider::sliderDragged, this,
            [this] { slider_drag(*ui_.mCustomSlider); });
    ui_.tableView->setDropHandlers(
        [this] { return tableViewValidateDrop(); },
        [this](const QStringList& files) { return tableViewAcceptDrop(files); });
    connect(ui_.tableView, &JoinerTable::deletePressed, this,
            &MainController::button_joiner_delfile);
    connect(ui_.mTextFieldHowTo, &QLabel::linkActivated, this, &MainController::showHelp);
    // A run that went on by itself may have changed the states of the rows.
    connect(mainWin_.get(), &MainWindow::activated, ui_.tableView->viewport(),
            qOverload<>(&QWidget::update));
}

void MainController::awakeFromNib() {
    platformLog("awakeFromNib");
    mainWin_->setCloseAction([this] { closeApplication(); });
    setDefaultView();
}

void MainController::setDefaultView() {
    initVersionPlist();
    makeLists();
    ui_.curView->setCurrentWidget(ui_.viewCutter);
    joiner_.reload();
    ui_.tableView->setAcceptDrops(true);
    ui_.mLabelDuration->setReadOnly(true);
    viewValueReset();
    setDefaultTooltips();
    mainWin_->setBackgroundColor(QColor::fromRgbF(0.73F, 0.87F, 0.97F, 1.0F));
    ui_.tableView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    cutter_.unload();
    subscribe(CustomSlider::kChangedNotification, &MainController::scrubbingbarDidChange);
    ui_.mCustomImage->setMouseDownCB(this, &MainController::mouseDownListener);
    currentSetting = std::make_shared<NodeSetting>();
    subscribe(customTextField::kChangedNotification, &MainController::onTextDidChange);
    cutter_.createPanel();
    joiner_.createPanel();
}

void MainController::makeLists() {
    cutterFileList = std::make_shared<FileList>();
    joinerFileList = std::make_shared<FileList>();
    sharedFileList = cutterFileList;
}

/// Subscriptions are for good, so they must not outlive what they call.
void MainController::subscribe(const char* name,
                               void (MainController::*handler)(const Notification&)) {
    NotificationCenter::defaultCenter().addObserver(
        name, [self = QPointer<MainController>(this), handler](const Notification& notification) {
            if (self) {
                (self->*handler)(notification);
            }
        });
}

/// A panel that a refused start has left open was opened for the workspace, the videos and the
/// times of then. With others it would do what nobody has asked for.
void MainController::closePanels() {
    cutter_.closePanel();
    joiner_.closePanel();
}

void MainController::setDefaultTooltips() {
    const QString typing = "You can input time here, format(hh:mm:ss.fff)";
    ui_.mButtonCutterAdd->setToolTip("Add video file");
    ui_.mButtonPlay->setToolTip("Play");
    ui_.mButtonLeft->setToolTip("Set Start Point");
    ui_.mButtonRight->setToolTip("Set End Point");
    ui_.mLabelStart->setToolTip(typing);
    ui_.mLabelEnd->setToolTip(typing);
    ui_.mButtonCutterSetting->setToolTip("Start cut");
    ui_.mButtonJoinerAdd->setToolTip("Add video file");
    ui_.mButtonJoinerRemove->setToolTip("Remove");
    ui_.mButtonJoinerSetting->setToolTip("Merge into a video file");
    ui_.mTextFieldHowTo->setToolTip(helpPageAddress());
    ui_.mButtonSetImage->setToolTip("Add video file");
    ui_.tableView->setToolTip("Drag and drop file here");
}

void MainController::initVersionPlist() {
    const QString list = Bundle::pathForResource("velmora-Info", "plist");
    version_ = readPropertyList(list).toMap().value("CFBundleShortVersionString").toString();
    // The title has no place for the version.
    mainWin_->setWindowTitle("Velmora");
    ui_.mTextFieldHowTo->setTextFormat(Qt::RichText);
    ui_.mTextFieldHowTo->setTextInteractionFlags(Qt::TextBrowserInteraction);
    ui_.mTextFieldHowTo->setText(CustomStringOfHyperlink::hyperlinkFromString(
                                     "How to use the software", QUrl(helpPageAddress()))
                                     .toHtml());
}

void MainController::initParameter() {
    currentSetting->imCut = false;
    currentSetting->imJoin = false;
}

void MainController::textDidChange() {
    platformLog("change ");
}

// The workspaces.

QString MainController::selectedSegmentLabel() const {
    for (const QPushButton* const segment : ui_.mButtonSeg->findChildren<QPushButton*>()) {
        if (segment->isChecked()) {
            return segment->text().remove('&'); // desktops may add mnemonics
        }
    }
    return {};
}

void MainController::button_segSelected() {
    const QString label = selectedSegmentLabel();
    const bool cutter = label == kCutterLabel;
    if (!cutter && label != kJoinerLabel) {
        return;
    }
    closePanels();
    sharedFileList = cutter ? cutterFileList : joinerFileList;
    ui_.curView->setCurrentWidget(cutter ? ui_.viewCutter : ui_.viewJoiner);
}

void MainController::closeApplication() {
    platformLog("exit button xxxxxxxxxx");
    terminating_ = true;
    QCoreApplication::quit();
}

void MainController::fileOpen() {
    beginOpenPanel(
        *mainWin_, OpenPanelChoice::Files,
        QStandardPaths::writableLocation(QStandardPaths::MoviesLocation),
        [this](int result, const QStringList& files) { openFilePanelDidEnd(files, result); });
}

void MainController::openFilePanelDidEnd(const QStringList& files, int returnCode) {
    if (returnCode != kPanelOk) {
        return;
    }
    if (selectedSegmentLabel() == kJoinerLabel) {
        joiner_.addChosenFiles(files);
    } else {
        cutter_.loadChosenFiles(files);
    }
}

void MainController::setInfoParameter(const QString& key, const QString& value) {
    CutterSession::setInfoParameter(key, value);
}

QString MainController::getStringTime(float time) const {
    return timeText(time);
}

void MainController::textSetTime(QLineEdit& field, float time) const {
    field.setText(timeText(time));
}

void MainController::testSetTimeDuration(QLineEdit& field, float position, float length) const {
    field.setText(positionText(position, length));
}

std::int64_t MainController::getTextFieldValueMs(std::int64_t which) const {
    return cutter_.getTextFieldValueMs(which);
}

void MainController::slider_drag(const CustomSlider& sender) {
    cutter_.showPosition(sender.doubleValue());
}

void MainController::scrubbingbarDidChange(const Notification& notification) {
    cutter_.scrubTo(notification.userInfo.value(CustomSlider::kValueKey).toDouble());
}

void MainController::onTextDidChange(const Notification& /*notification*/) {
    cutter_.timesTyped();
}

QVariant MainController::tableViewObjectValueForTableColumn(const QString& identifier,
                                                            int row) const {
    return joiner_.cell(identifier, row);
}

} // namespace velmora
