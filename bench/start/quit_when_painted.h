#pragma once

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

// Ends the program once the window has been painted and the painting handed to the display.
class QuitWhenPainted : public QObject {
  public:
    explicit QuitWhenPainted(QWidget& window) : QObject(&window) { window.installEventFilter(this); }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            QTimer::singleShot(0, qApp, [] { QCoreApplication::quit(); });
        return QObject::eventFilter(watched, event);
    }
};
