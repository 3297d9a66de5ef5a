#include "WindowReading.h"

#include "CustomSlider.h"
#include "customImageView.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QHash>
#include <QHeaderView>
#include <QImage>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QPainter>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace velmora::test {
namespace {

constexpr double kLeastContrast = 4.5;
constexpr int kDensity = 3; ///< so that thin strokes are drawn in their full colour

QString accessibleName(QWidget& widget) {
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(&widget);
    return interface ? interface->text(QAccessible::Name) : QString();
}

bool isPartOfAnother(const QWidget& widget) {
    const QWidget* const parent = widget.parentWidget();
    return parent && (parent->inherits("QComboBox") || parent->inherits("QAbstractItemView") ||
                      parent->inherits("QComboBoxPrivateContainer"));
}

bool isControl(const QWidget& widget) {
    if (const auto* const field = qobject_cast<const QLineEdit*>(&widget)) {
        return !field->isReadOnly();
    }
    if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
        return label->textInteractionFlags().testFlag(Qt::LinksAccessibleByKeyboard);
    }
    if (const auto* const view = qobject_cast<const customImageView*>(&widget)) {
        return view->focusPolicy() != Qt::NoFocus; // pressed only while it is empty
    }
    if (const auto* const bar = qobject_cast<const CustomSlider*>(&widget)) {
        return bar->customSliderEnable();
    }
    return widget.inherits("QAbstractButton") || widget.inherits("QComboBox") ||
           widget.inherits("QTableView");
}

QList<QWidget*> onShow(QWidget& window) {
    QList<QWidget*> all = window.findChildren<QWidget*>();
    all.removeIf([&window](const QWidget* widget) {
        return !widget->isVisibleTo(&window) || widget->window() != &window ||
               isPartOfAnother(*widget) || widget->objectName().startsWith("qt_");
    });
    return all;
}

/// Of exclusive buttons, the arrow keys go to those that Tab passes over.
bool isReachedByArrows(const QWidget& widget) {
    const auto* const button = qobject_cast<const QAbstractButton*>(&widget);
    return button && !button->isChecked() && (button->autoExclusive() || button->group());
}

double linear(double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double luminance(QRgb colour) {
    return 0.2126 * linear(qRed(colour) / 255.0) + 0.7152 * linear(qGreen(colour) / 255.0) +
           0.0722 * linear(qBlue(colour) / 255.0);
}

double contrast(QRgb a, QRgb b) {
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

/// The best contrast that any dot has to the colour that most dots have.
double contrastOf(const QImage& picture) {
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            ++counts[picture.pixel(x, y)];
        }
    }
    const auto most =
        std::max_element(counts.keyValueBegin(), counts.keyValueEnd(),
                         [](const auto& a, const auto& b) { return a.second < b.second; });
    double best = 1;
    for (auto it = counts.keyBegin(); it != counts.keyEnd(); ++it) {
        best = std::max(best, contrast(*it, most->first));
    }
    return best;
}

/// Where a widget has its text: not on its frame, nor where it has a mark.
QRect placeOfText(const QWidget& widget) {
    constexpr int frame = 4;
    constexpr int mark = 24;
    QRect place = widget.rect();
    if (qobject_cast<const QLabel*>(&widget)) {
        return place;
    }
    place.adjust(frame, frame, -frame, -frame);
    const auto* const button = qobject_cast<const QAbstractButton*>(&widget);
    if (widget.inherits("QRadioButton")) {
        place.setLeft(mark);
    } else if (button && !button->icon().isNull()) {
        place.setLeft(place.center().x());
    } else if (widget.inherits("QComboBox")) {
        place.setRight(place.right() - mark);
    }
    return place;
}

QString textOf(const QWidget& widget) {
    if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
        return label->text().trimmed();
    }
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) {
        return button->text();
    }
    if (const auto* const field = qobject_cast<const QLineEdit*>(&widget)) {
        return field->text();
    }
    if (const auto* const box = qobject_cast<const QComboBox*>(&widget)) {
        return box->currentText();
    }
    return widget.inherits("QHeaderView") ? QString("titles") : QString();
}

QImage pictureOf(QWidget& window) {
    QImage picture(window.size() * kDensity, QImage::Format_RGB32);
    picture.setDevicePixelRatio(kDensity);
    QPainter painter(&picture);
    window.render(&painter);
    return picture;
}

QRect inPicture(const QWidget& widget, const QWidget& window) {
    const QRect place = placeOfText(widget);
    return {widget.mapTo(&window, place.topLeft()) * kDensity, place.size() * kDensity};
}

QString labelOf(const QWidget& widget) {
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) {
        return button->text();
    }
    const auto* const label = qobject_cast<const QLabel*>(&widget);
    return label && label->buddy() ? label->text() : QString();
}

} // namespace

QStringList walkBy(QWidget& window, Qt::Key key, Qt::KeyboardModifiers modifiers) {
    constexpr qsizetype most = 64;
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    QStringList walk;
    const QWidget* first = nullptr;
    while (walk.size() < most) {
        QTest::keyClick(window.windowHandle(), key, modifiers);
        QWidget* const now = window.focusWidget();
        if (!now || now == first) {
            break;
        }
        if (!first) {
            first = now;
        }
        walk.append(now->objectName());
        EXPECT_NE(accessibleName(*now), "") << now->objectName().toStdString();
    }
    return walk;
}

QStringList notReachedBy(QWidget& window, const QStringList& walk) {
    QStringList missed;
    for (const QWidget* const widget : onShow(window)) {
        if (isControl(*widget) && widget->isEnabledTo(&window) && !isReachedByArrows(*widget) &&
            !walk.contains(widget->objectName())) {
            missed.append(widget->objectName());
        }
    }
    return missed;
}

QStringList mnemonicsUsedTwice(QWidget& window) {
    QMap<QString, int> uses;
    for (const QWidget* const widget : onShow(window)) {
        ++uses[QKeySequence::mnemonic(labelOf(*widget)).toString()];
    }
    uses.remove({});
    QStringList twice;
    for (auto use = uses.cbegin(); use != uses.cend(); ++use) {
        if (use.value() > 1) {
            twice.append(use.key());
        }
    }
    return twice;
}

QStringList hardToRead(QWidget& window) {
    const QImage picture = pictureOf(window);
    QStringList found;
    for (const QWidget* const widget : onShow(window)) {
        const bool isHint = qobject_cast<const QLabel*>(widget) != nullptr;
        if (textOf(*widget).isEmpty() || !(isHint || widget->isEnabledTo(&window))) {
            continue;
        }
        const double seen = contrastOf(picture.copy(inPicture(*widget, window)));
        if (seen < kLeastContrast) {
            found.append(QString("%1: %2").arg(widget->objectName(), QString::number(seen)));
        }
    }
    return found;
}

QImage pictureOfPreview(const customImageView& view) {
    QImage picture(320, 240, QImage::Format_RGB32);
    QPainter painter(&picture);
    view.image().draw(painter, picture.rect());
    return picture;
}

} // namespace velmora::test
