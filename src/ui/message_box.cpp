#include "ui/message_box.h"

#include <QAbstractButton>
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

class Box : public QMessageBox {
  public:
    Box(Icon icon, const QString& title, const QString& text, StandardButtons buttons, QWidget* screen,
        const BoxPlace& place)
        : QMessageBox(icon, title, text, buttons, screen), place_(place) {
        setTextFormat(Qt::PlainText);
    }

  protected:
    // Not before: a message box takes its size when it is shown.
    void showEvent(QShowEvent* event) override {
        QMessageBox::showEvent(event);
        if (!parentWidget() || !place_.form.isValid())
            return;
        // Its frame is like its screen's. Some window managers take the place for the frame's, others for the
        // contents': there is room for both.
        const QWidget* window = parentWidget()->window();
        const QPoint corner = window->geometry().topLeft() - window->frameGeometry().topLeft();
        const QSize frame = window->frameGeometry().size() - window->size() + QSize(corner.x(), corner.y());
        move(cornerOf(size() + frame, place_, window->screen()->availableGeometry()) + corner);
    }

  private:
    BoxPlace place_;
};

} // namespace

void showMessage(QWidget* parent, const QString& text, const QString& title, desk::Icon icon, const BoxPlace& place) {
    Box box(icon == desk::Icon::exclamation ? QMessageBox::Warning : QMessageBox::NoIcon, title, text, QMessageBox::Ok,
            parent, place);
    box.button(QMessageBox::Ok)->setText(u"OK"_s);
    new NoRepeat(box);
    box.exec();
}

bool askQuestion(QWidget* parent, const QString& text, const QString& title, desk::Preset preset,
                 const BoxPlace& place) {
    Box box(QMessageBox::NoIcon, title, text, QMessageBox::Yes | QMessageBox::No, parent, place);
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
