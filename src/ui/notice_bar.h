#pragma once

#include "desk/desk.h"

#include <QFrame>
#include <QString>

#include <array>
#include <functional>
#include <initializer_list>
#include <vector>

class QLabel;
class QPushButton;

namespace ui {

// What a bar's buttons do; each button bears this name.
enum class NoticeAction { 読み直す, 表示する, 戻す, 捨てる };

// The line at the top of a screen that tells what needs no answer. It blocks nothing and never takes the keyboard: its
// buttons are pressed with the mouse or with Alt and their letter. Hidden when there is nothing to say.
class NoticeBar : public QFrame {
  public:
    explicit NoticeBar(QWidget* parent);

    // Runs when a button is pressed.
    std::function<void(NoticeAction)> pressed;
    std::function<void(std::function<void()>)> taken;

    // An offer's press gives what it runs to taken.
    void tell(const QString& text, std::initializer_list<NoticeAction> actions = {},
              std::vector<desk::Offer> offers = {});
    void clear();
    const QString& text() const { return text_; }

  private:
    QPushButton* addButton(const QString& name, const QString& caption, QChar key);
    void showOffers(std::vector<desk::Offer> offers);

    QString text_;
    QLabel* label_;
    std::array<QPushButton*, 4> buttons_{};
    std::vector<desk::Offer> offers_;
    std::vector<QPushButton*> offerButtons_;
};

} // namespace ui
