#include "support/screen_fixture.h"

#include "app/application.h"
#include "app/screens.h"
#include "ui/grid_view.h"

#include <QApplication>
#include <QHeaderView>
#include <QMessageBox>
#include <QtTest>

using namespace Qt::StringLiterals;

ScreenFixture::ScreenFixture() {
    workplace = std::make_unique<ui::Workplace>(app::screens());
    workplace->today = [this] { return today; };
    timer_.setInterval(1);
    QObject::connect(&timer_, &QTimer::timeout, [this] { answerBox(); });
    timer_.start();
}

ScreenFixture::~ScreenFixture() {
    allShown();
    workplace.reset();
}

ui::Screen& ScreenFixture::open(const QString& name) {
    workplace->open(name);
    return screen(name);
}

ui::Screen& ScreenFixture::screen(const QString& name) {
    ui::Screen* found = workplace->find(name);
    if (!found)
        throw std::runtime_error(name.toStdString() + " is not open");
    return *found;
}

void ScreenFixture::type(const QString& screenName, const QString& name, const QString& text) {
    QWidget& widget = control(screenName, name);
    if (auto* box = qobject_cast<QComboBox*>(&widget))
        box->setEditText(text);
    else
        dynamic_cast<QLineEdit&>(widget).setText(text);
}

QString ScreenFixture::text(const QString& screenName, const QString& name) {
    QWidget& widget = control(screenName, name);
    if (auto* box = qobject_cast<QComboBox*>(&widget))
        return box->currentText();
    return dynamic_cast<QLineEdit&>(widget).text();
}

void ScreenFixture::press(const QString& screenName, const QString& button) {
    control<QAbstractButton>(screenName, button).click();
    QCoreApplication::processEvents();
}

void ScreenFixture::clickLine(const QString& screenName, const QString& list, const QString& text) {
    auto& box = control<QListWidget>(screenName, list);
    const auto lines = box.findItems(text, Qt::MatchExactly);
    if (lines.isEmpty())
        throw std::runtime_error(text.toStdString() + " is not in the list");
    box.scrollToItem(lines.front());
    QTest::mouseClick(box.viewport(), Qt::LeftButton, {}, box.visualItemRect(lines.front()).center());
}

void ScreenFixture::clickCell(const QString& screenName, const QString& grid, int row, int column) {
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

QString ScreenFixture::cell(const QString& screenName, const QString& grid, int row, int column) {
    auto& view = control<QTableView>(screenName, grid);
    return view.model()->index(row - 1, column).data().toString();
}

QColor ScreenFixture::colour(const QString& screenName, const QString& name) {
    return control(screenName, name).palette().color(QPalette::Text);
}

void ScreenFixture::close(const QString& screenName) {
    screen(screenName).close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

void ScreenFixture::expect(const QString& text, const QString& title) {
    expected_.push_back({text, title, false, false});
}

void ScreenFixture::answer(const QString& text, const QString& title, bool yes) {
    expected_.push_back({text, title, true, yes});
}

void ScreenFixture::allShown() {
    for (const Expected& left : expected_)
        ADD_FAILURE() << "not shown: " << left.title.toStdString() << ": " << left.text.toStdString();
    expected_.clear();
}

void ScreenFixture::answerBox() {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box)
        return;
    const bool question = box->button(QMessageBox::Yes) != nullptr;
    if (expected_.empty()) {
        ADD_FAILURE() << "unexpected: " << box->windowTitle().toStdString() << ": " << box->text().toStdString();
        box->reject();
        return;
    }
    const Expected next = expected_.front();
    expected_.pop_front();
    EXPECT_EQ(box->text().toStdString(), next.text.toStdString());
    EXPECT_EQ(box->windowTitle().toStdString(), next.title.toStdString());
    EXPECT_EQ(question, next.question) << next.text.toStdString();
    if (!question)
        box->button(QMessageBox::Ok)->click();
    else
        box->button(next.yes ? QMessageBox::Yes : QMessageBox::No)->click();
}

int main(int argc, char* argv[]) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    app::prepare(application);
    return RUN_ALL_TESTS();
}
