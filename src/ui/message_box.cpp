#include "ui/message_box.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

// A key held down answers no box: every answer is a press of its own.
class NoRepeat : public QObject {
  public:
    explicit NoRepeat(QMessageBox& box) : QObject(&box) {
        for (QAbstractButton* button : box.buttons())
            button->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        return event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->isAutoRepeat();
    }
};

} // namespace

void showMessage(QWidget* parent, const QString& text, const QString& title, desk::Icon icon) {
    QMessageBox box(icon == desk::Icon::exclamation ? QMessageBox::Warning : QMessageBox::NoIcon, title, text,
                    QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Ok)->setText(u"OK"_s);
    new NoRepeat(box);
    box.exec();
}

bool askQuestion(QWidget* parent, const QString& text, const QString& title, desk::Preset preset) {
    QMessageBox box(QMessageBox::NoIcon, title, text, QMessageBox::Yes | QMessageBox::No, parent);
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Yes)->setText(u"はい"_s);
    box.button(QMessageBox::Yes)->setShortcut(Qt::Key_Y);
    box.button(QMessageBox::No)->setText(u"いいえ"_s);
    box.button(QMessageBox::No)->setShortcut(Qt::Key_N);
    box.setDefaultButton(preset == desk::Preset::yes ? QMessageBox::Yes : QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    new NoRepeat(box);
    return box.exec() == QMessageBox::Yes;
}

} // namespace ui
