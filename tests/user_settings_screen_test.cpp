#include "app/screens.h"
#include "desk/user_settings.h"
#include "printing/label_painter.h"
#include "printing/listing_painter.h"
#include "support/screen_fixture.h"
#include "ui/row_table.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

class UserSettings : public ScreenFixture {
  protected:
    UserSettings() { standing.show(); }
    ~UserSettings() override { ui::useTextSize(ui::TextSize::standard); }

    // The program ends, and starts again.
    void startAgain() {
        workplace = std::make_unique<ui::Workplace>(app::screens());
        ui::beginWithFont(usual);
    }
    void choose(const QString& size) {
        open(u"設定"_s);
        press(u"設定"_s, size);
    }
    QString bar(const QString& name) { return control<QLabel>(name, u"お知らせ文"_s).text(); }
    // As the window manager does it.
    void resize(const QString& name, QSize size) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&screen(name)));
        screen(name).windowHandle()->resize(size);
        ASSERT_TRUE(QTest::qWaitFor([&] { return screen(name).size() == size; }));
    }
    std::vector<int> widths(const QString& name, const QString& table) {
        return control<ui::RowTable>(name, table).widthsShown();
    }
    void pull(const QString& name, const QString& table, int column, int width) {
        control<ui::RowTable>(name, table).horizontalHeader()->resizeSection(column, width);
    }

    const QFont usual = QApplication::font();
    QWidget standing; // by it the frames of windows are known from the first one on
};

// Where everything on a screen stands, and how large its letters are.
QStringList look(ui::Screen& shown) {
    QCoreApplication::processEvents();
    for (auto* bar : shown.findChildren<QScrollBar*>())
        bar->setValue(0);
    QStringList all{u"%1 x %2"_s.arg(shown.width()).arg(shown.height())};
    for (const QWidget* widget : shown.findChildren<QWidget*>()) {
        if (!widget->isVisibleTo(&shown) || widget->isWindow())
            continue;
        const QPoint place = widget->mapTo(&shown, QPoint());
        all << u"%1 %2: %3,%4 %5x%6 %7"_s
                   .arg(QLatin1StringView(widget->metaObject()->className()), widget->objectName())
                   .arg(place.x())
                   .arg(place.y())
                   .arg(widget->width())
                   .arg(widget->height())
                   .arg(widget->font().pointSizeF());
        if (const auto* table = qobject_cast<const QTableView*>(widget); table && table->model()->rowCount() > 0)
            all << u"rows of %1"_s.arg(table->rowHeight(0));
    }
    return all;
}

QStringList differences(const QStringList& one, const QStringList& other) {
    QStringList all;
    for (qsizetype i = 0; i < std::max(one.size(), other.size()); ++i) {
        if (one.value(i) != other.value(i))
            all << one.value(i) + u" / "_s + other.value(i);
    }
    return all;
}

// Nothing keeps the size that it was made with.
TEST_F(UserSettings, AScreenThatIsOpenLooksLikeOneThatIsOpenedAtThatSize) {
    QHash<QString, QStringList> switched;
    openEvery([&](ui::Screen& shown) {
        const QStringList before = look(shown);
        workplace->chooseTextSize(ui::TextSize::largest);
        switched[shown.objectName()] = look(shown);
        workplace->chooseTextSize(ui::TextSize::standard);
        EXPECT_EQ(differences(look(shown), before), QStringList());
    });
    workplace->chooseTextSize(ui::TextSize::largest);
    EXPECT_NEAR(QApplication::font().pointSizeF(), usual.pointSizeF() * 1.45, 0.01);
    openEvery(
        [&](ui::Screen& shown) { EXPECT_EQ(differences(switched[shown.objectName()], look(shown)), QStringList()); });
    // What the program did to the windows is nobody's choice.
    EXPECT_EQ(desk::userSettings().childGroups(), QStringList{u"appearance"_s});
}

TEST_F(UserSettings, TheTextSizeHoldsAtTheNextStartAndNothingTypedIsLost) {
    {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(sampleHousehold(1));
    }
    open(u"メニュー"_s);
    workplace->context.publishHousehold(1);
    open(u"檀家登"_s);
    type(u"檀家登"_s, u"frm01_biko"_s, u"打ちかけ"_s);
    const int writes = store::writesCommitted();
    const int small = control(u"檀家登"_s, u"frm01_toshug"_s).width();
    press(u"メニュー"_s, u"設定"_s);
    EXPECT_TRUE(control<QAbstractButton>(u"設定"_s, u"標準"_s).isChecked());
    press(u"設定"_s, u"大"_s);
    EXPECT_NEAR(screen(u"檀家登"_s).font().pointSizeF(), usual.pointSizeF() * 1.2, 0.01);
    EXPECT_GT(control(u"檀家登"_s, u"frm01_toshug"_s).width(), small);
    EXPECT_EQ(text(u"檀家登"_s, u"frm01_biko"_s), u"打ちかけ"_s);
    EXPECT_TRUE(workplace->drafts.all().empty());
    EXPECT_EQ(store::writesCommitted(), writes);
    EXPECT_EQ(workplace->context.dnk_no1, 1);
    EXPECT_EQ(bar(u"設定"_s), QString());
    startAgain();
    EXPECT_NEAR(QApplication::font().pointSizeF(), usual.pointSizeF() * 1.2, 0.01);
    open(u"設定"_s);
    EXPECT_TRUE(control<QAbstractButton>(u"設定"_s, u"大"_s).isChecked());
}

TEST_F(UserSettings, WhatIsPrintedStaysAsItIs) {
    const auto printed = [&](const QString& folder) {
        QDir().mkpath(path(folder));
        const auto printer = printing::pdfFile(path(folder), u"宛名"_s);
        printing::LabelRun run(printer->font());
        run.printLabel({u"〒380-0001"_s, u"寺前1丁目2-3"_s, {}, u"山田　太郎"_s});
        const printing::PrintedListing list(
            {.title = u"年回表"_s,
             .blocks = {printing::ListingTable{.columns = {{u"戒名"_s}, {u"命日"_s}},
                                               .groups = {{.rows = {{u"慈光院"_s, u"3日"_s}}}}}}});
        QByteArray both;
        for (const QString& pdf :
             {printer->print(run).file, printing::writePdf(list, path(folder), u"年回表"_s).file}) {
            QFile file(pdf);
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            both += file.readAll();
        }
        static const QRegularExpression moment(u"\\(D:[^)]*\\)"_s);
        return QString::fromLatin1(both).replace(moment, QString());
    };
    const QString before = printed(u"標準"_s);
    ui::useTextSize(ui::TextSize::largest);
    EXPECT_GT(before.size(), 1000);
    EXPECT_TRUE(printed(u"特大"_s) == before);
}

TEST_F(UserSettings, WindowsAndColumnsAreAsTheUserLeftThemUntilHePutsThemBack) {
    const QString name = u"檀家一覧"_s;
    const QSize fitted = open(name).size();
    const std::vector<int> shared = widths(name, u"DBGrid1"_s);
    close(name);
    EXPECT_TRUE(desk::userSettings().allKeys().isEmpty());

    open(name);
    const QSize wish(fitted.width() - 60, fitted.height() - 80);
    resize(name, wish);
    pull(name, u"DBGrid1"_s, 1, 222);
    EXPECT_EQ(widths(name, u"DBGrid7"_s)[1], 222);
    close(name);
    startAgain();
    EXPECT_EQ(open(name).size(), wish);
    EXPECT_EQ(widths(name, u"DBGrid1"_s)[1], 222);
    EXPECT_EQ(widths(name, u"DBGrid7"_s)[1], 222);

    // Larger letters are never cut by a size that was chosen for smaller ones.
    choose(u"特大"_s);
    EXPECT_GT(widths(name, u"DBGrid1"_s)[1], 222 * 1.3);
    const QSize large = screen(name).size();
    desk::userSettings().remove(u"windows"_s);
    close(name);
    EXPECT_EQ(open(name).size(), large);
    choose(u"標準"_s);

    screen(name).showMaximized();
    close(name);
    EXPECT_TRUE(open(name).isMaximized());
    open(u"設定"_s);
    press(u"設定"_s, u"窓を戻す"_s);
    EXPECT_EQ(bar(u"設定"_s), u"窓の大きさと列の幅を、はじめの状態に戻しました。"_s);
    EXPECT_FALSE(screen(name).isMaximized());
    EXPECT_EQ(screen(name).size(), fitted);
    QCoreApplication::processEvents();
    EXPECT_EQ(widths(name, u"DBGrid1"_s), shared);
    startAgain();
    EXPECT_EQ(open(name).size(), fitted);
}

TEST_F(UserSettings, ADamagedFileGivesTheDefaults) {
    const QString name = u"法要一"_s;
    const QSize fitted = open(name).size();
    const std::vector<int> shared = widths(name, u"frm21_tbl"_s);
    const struct {
        const char* what;
        QByteArray bytes;
        std::vector<std::pair<QString, QVariant>> values;
    } cases[] = {
        {"garbage", QByteArray("\xff\0[[%\n=[windows\n%U=\0\x80@Invalid(\n", 30) + QByteArray(5000, '\xe5'), {}},
        {"other kinds",
         {},
         {{u"appearance/textSize"_s, QVariantList{1, u"large"_s}},
          {u"windows/法要一"_s, u"大きい"_s},
          {u"columns/法要一.frm21_tbl"_s, QByteArray("\0\1", 2)}}},
        {"numbers that cannot be",
         {},
         {{u"appearance/textSize"_s, -5},
          {u"windows/法要一"_s, QStringList{u"0"_s, u"-5"_s, u"17"_s}},
          {u"columns/法要一.frm21_tbl"_s, QStringList{u"17"_s, u"0"_s, u"-5"_s}}}},
        {"too large",
         {},
         {{u"appearance/textSize"_s, 1000000},
          {u"windows/法要一"_s, QStringList{u"1000000"_s, u"1000000"_s, u"17"_s}},
          {u"columns/法要一.frm21_tbl"_s, QStringList(static_cast<qsizetype>(shared.size()) + 1, u"1000000"_s)}}},
        {"too few and too many",
         {},
         {{u"windows/法要一"_s, QStringList{u"500"_s, u"400"_s}},
          {u"columns/法要一.frm21_tbl"_s, QStringList(static_cast<qsizetype>(shared.size()) + 2, u"50"_s)}}},
    };
    for (const auto& damaged : cases) {
        SCOPED_TRACE(damaged.what);
        const QTemporaryDir other;
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, other.path());
        if (!damaged.bytes.isEmpty()) {
            QFile file(desk::userSettings().fileName());
            ASSERT_TRUE(QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly));
            file.write(damaged.bytes);
        }
        for (const auto& [key, value] : damaged.values)
            ASSERT_TRUE(desk::keepUserSetting(key, value));
        startAgain();
        EXPECT_EQ(QApplication::font(), usual);
        EXPECT_EQ(open(name).size(), fitted);
        EXPECT_EQ(widths(name, u"frm21_tbl"_s), shared);
        choose(u"大"_s);
        EXPECT_EQ(bar(u"設定"_s), QString());
        startAgain();
        EXPECT_EQ(ui::keptTextSize(), ui::TextSize::large);
    }
}

// A folder in the place of the file, and a file in the place of its folder.
TEST_F(UserSettings, WhatCannotBeKeptForTheNextStartIsSaid) {
    for (const bool folder : {true, false}) {
        SCOPED_TRACE(folder);
        const QTemporaryDir other;
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, other.path());
        const QString file = desk::userSettings().fileName();
        QFile inTheWay(QFileInfo(file).path());
        ASSERT_TRUE(folder ? QDir().mkpath(file) : inTheWay.open(QIODevice::WriteOnly));
        startAgain();
        choose(u"特大"_s);
        EXPECT_NEAR(screen(u"設定"_s).font().pointSizeF(), usual.pointSizeF() * 1.45, 0.01);
        EXPECT_EQ(
            bar(u"設定"_s),
            u"文字の大きさを変えましたが、次に起動するときまでは残せません。設定のファイル「%1」に書き込めるか確認して下さい。"_s
                .arg(file));
        open(u"法要一"_s);
        pull(u"法要一"_s, u"frm21_tbl"_s, 1, 222);
        EXPECT_TRUE(QTest::qWaitFor([&] { return bar(u"法要一"_s).startsWith(u"窓の大きさと列の幅を"_s); }));
        EXPECT_EQ(widths(u"法要一"_s, u"frm21_tbl"_s)[1], 222);
        choose(u"標準"_s);
    }
}

} // namespace
