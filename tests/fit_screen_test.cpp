#include "support/screen_fixture.h"

#include <QAccessible>
#include <QApplication>
#include <QScopeGuard>
#include <QScrollArea>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace {

using Fit = ScreenFixture;

// The free room inside a window frame on a display of 1366 x 768, and of the same one at 150 percent.
constexpr QSize office(1358, 736);
constexpr QSize officeEnlarged(903, 480);

void expectFits(ui::Screen& shown, QSize room) {
    shown.fit(room);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    SCOPED_TRACE(u"%1 in %2 x %3"_s.arg(shown.objectName()).arg(room.width()).arg(room.height()).toStdString());
    EXPECT_LE(shown.width(), room.width());
    EXPECT_LE(shown.height(), room.height());
    for (const auto* area : shown.findChildren<QScrollArea*>(QString(), Qt::FindDirectChildrenOnly))
        EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0);
    std::vector<QWidget*> controls = shown.tabOrder();
    for (const auto& binding : shown.bindings())
        controls.push_back(binding.widget);
    for (const QWidget* control : controls) {
        // Nothing that stands around a control cuts it.
        for (const QWidget* inner = control; !inner->isWindow() && inner->isVisibleTo(&shown);
             inner = inner->parentWidget()) {
            if (inner->parentWidget()->objectName() == u"qt_scrollarea_viewport")
                break;
            EXPECT_TRUE(inner->parentWidget()->rect().contains(inner->geometry()))
                << control->objectName().toStdString();
        }
    }
}

TEST_F(Fit, EveryScreenFitsASmallDisplayAndLargeLetters) {
    const QFont usual = QApplication::font();
    const auto back = qScopeGuard([&] { ui::beginWithFont(usual); });
    QFont large = usual;
    large.setPointSizeF(16);
    const struct {
        QFont desktop;
        ui::TextSize size;
        std::vector<QSize> rooms;
    } cases[] = {
        {usual, ui::TextSize::standard, {office, officeEnlarged}},
        {usual, ui::TextSize::largest, {office, officeEnlarged}},
        {large, ui::TextSize::largest, {office}},
    };
    for (const auto& each : cases) {
        ui::beginWithFont(each.desktop);
        ui::useTextSize(each.size);
        openEvery([&](ui::Screen& shown) {
            for (const QSize room : each.rooms)
                expectFits(shown, room);
        });
    }
}

TEST_F(Fit, EveryControlHasANameForAScreenReader) {
    int asked = 0;
    openEvery([&](ui::Screen& shown) {
        for (QWidget* control : shown.findChildren<QWidget*>()) {
            if (control->focusPolicy() == Qt::NoFocus)
                continue;
            QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(control);
            ASSERT_TRUE(spoken);
            ++asked;
            EXPECT_FALSE(spoken->text(QAccessible::Name).trimmed().isEmpty())
                << control->metaObject()->className() << ' ' << control->objectName().toStdString() << " in "
                << control->parentWidget()->objectName().toStdString();
        }
    });
    RecordProperty("asked", asked);
}

} // namespace
