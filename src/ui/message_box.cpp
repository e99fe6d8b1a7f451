#include "ui/message_box.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QScreen>

#include <algorithm>

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

QPoint cornerOf(QSize box, const BoxPlace& place, const QRect& room) {
    constexpr int gap = 8;
    const auto inside = [&](int x, int y) {
        return QPoint(std::max(room.left(), std::min(x, room.right() + 1 - box.width())),
                      std::max(room.top(), std::min(y, room.bottom() + 1 - box.height())));
    };
    for (const QRect& fields : {place.fields, place.first}) {
        if (!fields.isValid())
            continue;
        for (const QPoint corner :
             {inside(fields.left(), fields.bottom() + gap), inside(fields.right() + gap, fields.top()),
              inside(fields.left(), fields.top() - gap - box.height()),
              inside(fields.left() - gap - box.width(), fields.top())}) {
            if (!QRect(corner, box).intersects(fields))
                return corner;
        }
    }
    return inside(place.form.center().x() - box.width() / 2, place.form.bottom() + gap);
}

void put(QMessageBox& box, const BoxPlace& place) {
    const QWidget* parent = box.parentWidget();
    if (!parent || !place.form.isValid())
        return;
    // A message box takes its size when it is asked to lay itself out; its frame is like its screen's.
    box.ensurePolished();
    QEvent layOut(QEvent::LayoutRequest);
    QApplication::sendEvent(&box, &layOut);
    const QSize frame = parent->window()->frameGeometry().size() - parent->window()->size();
    box.move(cornerOf(box.size() + frame, place, parent->screen()->availableGeometry()));
}

} // namespace

void showMessage(QWidget* parent, const QString& text, const QString& title, desk::Icon icon, const BoxPlace& place) {
    QMessageBox box(icon == desk::Icon::exclamation ? QMessageBox::Warning : QMessageBox::NoIcon, title, text,
                    QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Ok)->setText(u"OK"_s);
    new NoRepeat(box);
    put(box, place);
    box.exec();
}

bool askQuestion(QWidget* parent, const QString& text, const QString& title, desk::Preset preset,
                 const BoxPlace& place) {
    QMessageBox box(QMessageBox::NoIcon, title, text, QMessageBox::Yes | QMessageBox::No, parent);
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Yes)->setText(u"はい"_s);
    box.button(QMessageBox::Yes)->setShortcut(Qt::Key_Y);
    box.button(QMessageBox::No)->setText(u"いいえ"_s);
    box.button(QMessageBox::No)->setShortcut(Qt::Key_N);
    box.setDefaultButton(preset == desk::Preset::yes ? QMessageBox::Yes : QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    new NoRepeat(box);
    put(box, place);
    return box.exec() == QMessageBox::Yes;
}

} // namespace ui
