#include "AlertReader.h"

#include "Desktop.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

namespace velmora::test {

AlertReader::AlertReader() {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { answer(); });
    timer_.start(20);
}

void AlertReader::answer() {
    QMessageBox* const box = alertPanel();
    if (!box || !box->isVisible() || !mayAnswer()) {
        return;
    }
    QStringList labels;
    for (const QAbstractButton* const button : box->buttons()) {
        labels.append(button->text());
    }
    messages.append(box->text());
    sentences.append(box->informativeText());
    titles.append(box->windowTitle());
    buttons.append(labels.join('|'));
    QTest::mouseClick(box->defaultButton(), Qt::LeftButton);
}

} // namespace velmora::test
