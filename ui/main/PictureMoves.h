#pragma once

#include <QObject>

namespace velmora {

class CutterSession;
class ExactPreview;
class MainWindow;
class PositionField;

/// What moves the cutter's video by pictures: menus with their keys, the wheel over preview and
/// bar, and the field for a position. Main thread.
class PictureMoves : public QObject {
    Q_OBJECT

public:
    /// All must outlive this.
    PictureMoves(MainWindow& window, CutterSession& session, ExactPreview& preview);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addKeys();
    void connectActions();
    void addToolTips();
    void openField();
    void turnWheel(int angle, bool bySeconds);

    MainWindow& window_;
    CutterSession& session_;
    ExactPreview& preview_;
    PositionField& field_; ///< the window's
    int angle_ = 0;        ///< by which the wheel has been turned since the last move
};

} // namespace velmora
