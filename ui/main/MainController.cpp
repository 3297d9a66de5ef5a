#include "MainController.h"

#include "Bundle.h"
#include "CustomSlider.h"
#include "CustomStringOfHyperlink.h"
#include "JoinerTableModel.h"
#include "MainWindow.h"
#include "NotificationCenter.h"
#include "PlatformLog.h"
#include "PropertyList.h"
#include "SharedState.h"
#include "cutterWinController.h"
#include "joinerWinController.h"
#include "ui_MainWindow.h"

#include <QCoreApplication>
#include <QPointer>
#include <QPushButton>
#include <QUrl>

namespace velmora {
namespace {

const QString cutterLabel = QStringLiteral("Video Cutter");
const QString joinerLabel = QStringLiteral("Video Joiner");

} // namespace

MainController::MainController()
    : mainWin_(std::make_unique<MainWindow>()), ui_(mainWin_->outlets()),
      tableModel_(std::make_unique<JoinerTableModel>(*this)) {
    initWithWindow();
    awakeControls();
    connectActions();
    connectMenu();
    windowDidLoad();
}

MainController::~MainController() = default;

void MainController::initWithWindow() {
    platformLog("initWithWindow");
}

void MainController::windowDidLoad() {
    ui_.mCustomImage->setImage(NamedImage(customImageView::kPlaceholderName));
}

/// The bar draws on a canvas that never grows: it gets one for any screen.
void MainController::awakeControls() {
    constexpr int widest = 8192;
    ui_.mCustomSlider->resize(widest, ui_.mCustomSlider->sizeHint().height());
    ui_.mCustomSlider->awakeFromNib();
}

void MainController::awakeFromNib() {
    platformLog("awakeFromNib");
    mainWin_->setCloseAction([this] { closeApplication(); });
    setDefaultView();
}

void MainController::setDefaultView() {
    initVersionPlist();
    cutterFileList = std::make_shared<FileList>();
    joinerFileList = std::make_shared<FileList>();
    sharedFileList = cutterFileList;
    ui_.curView->setCurrentWidget(ui_.viewCutter);
    if (ui_.tableView->model() != tableModel_.get())
        ui_.tableView->setModel(tableModel_.get());
    tableModel_->reloadData();
    ui_.tableView->setAcceptDrops(true);
    ui_.mLabelDuration->setReadOnly(true);
    viewValueReset();
    setDefaultTooltips();
    mainWin_->setBackgroundColor(QColor::fromRgbF(0.73F, 0.87F, 0.97F, 1.0F));
    ui_.tableView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    mAddFileInitialized = false;
    ui_.mCustomSlider->setCustomSliderEnable(false);
    subscribe(CustomSlider::changedNotification, &MainController::scrubbingbarDidChange);
    ui_.mCustomImage->setMouseDownCB(this, &MainController::mouseDownListener);
    currentSetting = std::make_shared<NodeSetting>();
    subscribe(customTextField::changedNotification, &MainController::onTextDidChange);
    createPanels();
}

/// Subscriptions are for good, so they must not outlive what they call.
void MainController::subscribe(const char* name,
                               void (MainController::*handler)(const Notification&)) {
    NotificationCenter::defaultCenter().addObserver(
        name, [self = QPointer<MainController>(this), handler](const Notification& notification) {
            if (self)
                (self->*handler)(notification);
        });
}

void MainController::createPanels() {
    if (!mCutterWincontroller)
        mCutterWincontroller = std::make_unique<cutterWinController>(mainWin_.get());
    if (!mJointerWincontroller) {
        mJointerWincontroller = std::make_unique<joinerWinController>(mainWin_.get());
        mJointerWincontroller->setFileCanJoinCB(this, &MainController::fileCanJoin);
    }
}

/// A panel that a refused start has left open was opened for the workspace, the videos and the
/// times of then. With others it would do what nobody has asked for.
void MainController::closePanels() {
    mCutterWincontroller->close();
    mJointerWincontroller->close();
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

QString MainController::selectedSegmentLabel() const {
    for (const QPushButton* const segment : ui_.mButtonSeg->findChildren<QPushButton*>()) {
        if (segment->isChecked())
            return segment->text().remove('&'); // desktops may add mnemonics
    }
    return {};
}

void MainController::button_segSelected() {
    const QString label = selectedSegmentLabel();
    const bool cutter = label == cutterLabel;
    if (!cutter && label != joinerLabel)
        return;
    closePanels();
    sharedFileList = cutter ? cutterFileList : joinerFileList;
    ui_.curView->setCurrentWidget(cutter ? ui_.viewCutter : ui_.viewJoiner);
}

void MainController::closeApplication() {
    platformLog("exit button xxxxxxxxxx");
    terminating_ = true;
    QCoreApplication::quit();
}

} // namespace velmora
