#pragma once

#include "support/register_fixture.h"
#include "ui/workplace.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTableView>
#include <QTimer>

#include <deque>

// The program's screens on a fresh register, driven through their real widgets by object name. Message boxes are
// answered in the order announced; one that is not announced is closed and fails the test.
class ScreenFixture : public RegisterFixture {
  protected:
    ScreenFixture();
    ~ScreenFixture() override;

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
    void answer(const QString& text, const QString& title, bool yes);
    void allShown(); // every announced box has been shown

    std::unique_ptr<ui::Workplace> workplace;

  private:
    void answerBox();

    struct Expected {
        QString text;
        QString title;
        bool question;
        bool yes;
    };
    std::deque<Expected> expected_;
    QTimer timer_;
};
