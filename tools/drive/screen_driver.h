#pragma once

#include "ui/workplace.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTableView>
#include <QTimer>

#include <deque>
#include <stdexcept>

namespace drive {

// The program's screens, driven through their real widgets by object name as a user would. Message boxes are answered
// in the order announced; one that is not announced is closed and reported. What is not there throws.
class ScreenDriver {
  public:
    using Report = std::function<void(const QString& failure)>;

    explicit ScreenDriver(Report report);
    ~ScreenDriver();

    std::unique_ptr<ui::Workplace> workplace;

    ui::Screen& open(const QString& name);
    ui::Screen& screen(const QString& name); // open already

    template <class Widget = QWidget> Widget& control(const QString& screenName, const QString& name) {
        auto* found = screen(screenName).findChild<Widget*>(name);
        if (!found)
            throw std::runtime_error((screenName + QLatin1Char('.') + name).toStdString() + " is not there");
        return *found;
    }
    void type(const QString& screenName, const QString& name, const QString& text); // text box or drop-down list
    QString text(const QString& screenName, const QString& name);
    void press(const QString& screenName, const QString& button); // also option buttons and check boxes
    void clickLine(const QString& screenName, const QString& list, const QString& text);
    void clickCell(const QString& screenName, const QString& grid, int row, int column = 0); // row 0: header
    QString cell(const QString& screenName, const QString& grid, int row, int column);
    QColor colour(const QString& screenName, const QString& name); // of the text
    void close(const QString& screenName);

    // The next box: a message, or a question answered so.
    void expect(const QString& text, const QString& title);
    void expectBeginning(const QString& text, const QString& title); // a message that ends as it will
    void answer(const QString& text, const QString& title, bool yes);
    void allShown(); // every announced box has been shown

  private:
    void answerBox();

    struct Expected {
        QString text;
        QString title;
        bool question;
        bool yes;
        bool whole = true;
    };
    Report report_;
    std::deque<Expected> expected_;
    QTimer timer_;
};

} // namespace drive
