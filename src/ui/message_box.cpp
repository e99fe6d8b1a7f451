#include "ui/message_box.h"

#include <QAbstractButton>
#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace ui {

void showMessage(QWidget* parent, const QString& text, const QString& title, desk::Icon icon) {
    QMessageBox box(icon == desk::Icon::exclamation ? QMessageBox::Warning : QMessageBox::NoIcon, title, text,
                    QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Ok)->setText(u"OK"_s);
    box.exec();
}

bool askQuestion(QWidget* parent, const QString& text, const QString& title) {
    QMessageBox box(QMessageBox::NoIcon, title, text, QMessageBox::Yes | QMessageBox::No, parent);
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Yes)->setText(u"はい"_s);
    box.button(QMessageBox::Yes)->setShortcut(Qt::Key_Y);
    box.button(QMessageBox::No)->setText(u"いいえ"_s);
    box.button(QMessageBox::No)->setShortcut(Qt::Key_N);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

} // namespace ui
