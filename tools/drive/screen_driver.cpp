#include "drive/screen_driver.h"

#include "app/screens.h"

#include <QApplication>
#include <QHeaderView>
#include <QMessageBox>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace drive {

ScreenDriver::ScreenDriver(Report report)
    : workplace(std::make_unique<ui::Workplace>(app::screens())), report_(std::move(report)) {
    timer_.setInterval(1);
    QObject::connect(&timer_, &QTimer::timeout, [this] { answerBox(); });
    timer_.start();
}

ScreenDriver::~ScreenDriver() = default;

ui::Screen& ScreenDriver::open(const QString& name) {
    workplace->open(name);
    return screen(name);
}

ui::Screen& ScreenDriver::screen(const QString& name) {
    ui::Screen* found = workplace->find(name);
    if (!found)
        throw std::runtime_error(name.toStdString() + " is not open");
    return *found;
}

void ScreenDriver::type(const QString& screenName, const QString& name, const QString& text) {
    QWidget& widget = control(screenName, name);
    auto* box = qobject_cast<QComboBox*>(&widget);
    if (box && box->isEditable()) {
        box->setEditText(text);
    } else if (box) {
        const int entry = box->findText(text);
        if (entry < 0)
            throw std::runtime_error((screenName + u'.' + name + u" has no entry "_s + text).toStdString());
        box->setCurrentIndex(entry);
        Q_EMIT box->activated(entry);
        QCoreApplication::processEvents();
    } else
        dynamic_cast<QLineEdit&>(widget).setText(text);
}

QString ScreenDriver::text(const QString& screenName, const QString& name) {
    QWidget& widget = control(screenName, name);
    if (auto* box = qobject_cast<QComboBox*>(&widget))
        return box->currentText();
    return dynamic_cast<QLineEdit&>(widget).text();
}

void ScreenDriver::press(const QString& screenName, const QString& button) {
    control<QAbstractButton>(screenName, button).click();
    QCoreApplication::processEvents();
}

void ScreenDriver::clickLine(const QString& screenName, const QString& list, const QString& text) {
    auto& box = control<QListWidget>(screenName, list);
    const auto lines = box.findItems(text, Qt::MatchExactly);
    if (lines.isEmpty())
        throw std::runtime_error(text.toStdString() + " is not in the list");
    box.scrollToItem(lines.front());
    QTest::mouseClick(box.viewport(), Qt::LeftButton, {}, box.visualItemRect(lines.front()).center());
}

void ScreenDriver::clickCell(const QString& screenName, const QString& grid, int row, int column) {
    auto& view = control<QTableView>(screenName, grid);
    if (row == 0) {
        const int x = view.horizontalHeader()->sectionViewportPosition(column) + 5;
        QTest::mouseClick(view.horizontalHeader()->viewport(), Qt::LeftButton, {}, QPoint(x, 5));
        return;
    }
    const QModelIndex index = view.model()->index(row - 1, column);
    view.scrollTo(index);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(index).center());
}

QString ScreenDriver::cell(const QString& screenName, const QString& grid, int row, int column) {
    auto& view = control<QTableView>(screenName, grid);
    return view.model()->index(row - 1, column).data().toString();
}

QColor ScreenDriver::colour(const QString& screenName, const QString& name) {
    return control(screenName, name).palette().color(QPalette::Text);
}

void ScreenDriver::close(const QString& screenName) {
    screen(screenName).close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

void ScreenDriver::expect(const QString& text, const QString& title) {
    expected_.push_back({text, title, false, false});
}

void ScreenDriver::expectBeginning(const QString& text, const QString& title) {
    expected_.push_back({text, title, false, false, false});
}

void ScreenDriver::answer(const QString& text, const QString& title, bool yes) {
    expected_.push_back({text, title, true, yes});
}

void ScreenDriver::allShown() {
    for (const Expected& left : expected_)
        report_(u"not shown: %1: %2"_s.arg(left.title, left.text));
    expected_.clear();
}

void ScreenDriver::answerBox() {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box)
        return;
    const bool question = box->button(QMessageBox::Yes) != nullptr;
    if (expected_.empty()) {
        report_(u"unexpected: %1: %2"_s.arg(box->windowTitle(), box->text()));
        box->reject();
        return;
    }
    const Expected next = expected_.front();
    expected_.pop_front();
    const QString shown = next.whole ? box->text() : box->text().left(next.text.size());
    if (shown != next.text || box->windowTitle() != next.title || question != next.question)
        report_(u"shown: %1: %2\nannounced: %3: %4"_s.arg(box->windowTitle(), box->text(), next.title, next.text));
    if (!question)
        box->button(QMessageBox::Ok)->click();
    else
        box->button(next.yes ? QMessageBox::Yes : QMessageBox::No)->click();
}

} // namespace drive
