#include "printing/listing_painter.h"
#include "store/database.h"
#include "support/screen_fixture.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class ReportsScreen : public ScreenFixture {
  protected:
    ReportsScreen() {
        execute(
            u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_kaimyoug, tblkak_mei_ymd) "
            "VALUES (1, '山田', 'ハナ', '釈尼花', '2025-12-01')"_s);
    }
    // The window that shows the list of this title.
    QWidget& preview(const QString& title) {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->isVisible() && window->objectName() == title + u"プレビュー"_s)
                return *window;
        throw std::runtime_error("no preview");
    }
    static QString textOf(const QString& pdf) {
        QProcess reader;
        reader.start(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s});
        EXPECT_TRUE(reader.waitForFinished()) << "pdftotext (poppler-utils) is needed";
        return QString::fromUtf8(reader.readAllStandardOutput());
    }
    QString told(const QString& title) {
        return u"プリンターがないため、%1をPDFファイルに書き出しました。\n"_s.arg(title);
    }
};

TEST_F(ReportsScreen, TwoPressesFromTheMenuPrintTheComingYear) {
    open(u"メニュー"_s);
    press(u"メニュー"_s, u"帳票"_s);
    expect(told(u"年回表"_s) + path(u"年回表_20261122.pdf"_s), u"年回表"_s);
    press(u"帳票"_s, u"印刷"_s);
    allShown();
    const QString text = textOf(path(u"年回表_20261122.pdf"_s));
    for (const QString& part :
         {u"令和9年（2027年）"_s, u"3回忌"_s, u"12月1日"_s, u"釈尼花"_s, u"令和8年11月22日現在"_s})
        EXPECT_TRUE(text.contains(part)) << part.toStdString() << text.toStdString();
    expect(u"年回表をPDFファイルに書き出しました。\n"_s + path(u"年回表_20261122_2.pdf"_s), u"年回表"_s);
    press(u"帳票"_s, u"PDF"_s);
}

TEST_F(ReportsScreen, ShowsTheBoxesThatAReportUsesAndTellsWhatIsWrong) {
    open(u"帳票"_s);
    const struct {
        QString title;
        QString used; // of 年, 月, 日, 区分
    } cases[] = {{u"年回表"_s, u"1001"_s},   {u"祥月命日表"_s, u"1110"_s}, {u"檀家名簿"_s, u"0001"_s},
                 {u"お墓台帳"_s, u"0000"_s}, {u"法要予定表"_s, u"1100"_s}, {u"管理費請求一覧"_s, u"1100"_s}};
    for (const auto& each : cases) {
        type(u"帳票"_s, u"帳票種類"_s, each.title);
        QString used;
        for (const QString& box : {u"帳票年"_s, u"帳票月"_s, u"帳票日"_s, u"帳票区分"_s})
            used += control(u"帳票"_s, box).isEnabled() ? u'1' : u'0';
        EXPECT_EQ(used, each.used) << each.title.toStdString();
    }
    type(u"帳票"_s, u"帳票月"_s, u"１３"_s);
    expect(u"月を1から12で入力して下さい"_s, u"帳票"_s);
    press(u"帳票"_s, u"プレビュー"_s);
    EXPECT_EQ(colour(u"帳票"_s, u"帳票月"_s), QColor(255, 0, 0));
    type(u"帳票"_s, u"帳票種類"_s, u"お墓台帳"_s);
    expect(u"お墓が登録されていません。"_s, u"お墓台帳"_s);
    press(u"帳票"_s, u"印刷"_s);
    // Somebody else holds the register.
    SQLite::Database other(store::Database::registerPath().toStdString(), SQLite::OPEN_READWRITE);
    other.exec("BEGIN EXCLUSIVE");
    expectBeginning(u"登録簿ファイルは他のプログラムが使用中です。"_s, u"帳票"_s);
    press(u"帳票"_s, u"印刷"_s);
}

TEST_F(ReportsScreen, AListPrintsAllThatItLists) {
    for (int grave = 1; grave <= 75; ++grave)
        execute(
            u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_bohyo_mei) VALUES (%1, '東', '%1', '墓%1番')"_s
                .arg(grave));
    open(u"お墓一"_s);
    expect(u"印刷する行がありません。一覧を表示してから印刷して下さい。"_s, u"お墓一覧"_s);
    press(u"お墓一"_s, u"印刷"_s);
    type(u"お墓一"_s, u"frm21_block"_s, u"東"_s);
    QTest::keyClick(&control(u"お墓一"_s, u"frm21_block"_s), Qt::Key_Return);
    press(u"お墓一"_s, u"後ページ"_s);
    press(u"お墓一"_s, u"印刷"_s);
    QWidget& shown = preview(u"お墓一覧"_s);
    expect(told(u"お墓一覧"_s) + path(u"お墓一覧_20261122.pdf"_s), u"お墓一覧"_s);
    shown.findChild<QAbstractButton*>(u"印刷"_s)->click();
    const QString text = textOf(path(u"お墓一覧_20261122.pdf"_s));
    EXPECT_TRUE(text.contains(u"区画 東"_s) && text.contains(u"75件"_s)) << text.toStdString();
    for (int grave = 1; grave <= 75; ++grave)
        EXPECT_EQ(text.count(u"墓%1番"_s.arg(grave)), 1) << grave;
}

TEST_F(ReportsScreen, TellsAFileThatCannotBeWrittenAndWhatTheFontLacks) {
    printing::Listing list{.title = u"題"_s, .notes = {u"\U0001F9FF"_s}};
    const printing::PrintedListing printed(list);
    struct Told : desk::Desk {
        QStringList all;
        void notify(const QString& text, const QString& title, desk::Icon) override { all << title + u": "_s + text; }
        bool ask(const QString&, const QString&, desk::Preset) override { return false; }
        void inform(const QString&) override {}
        QDate today() const override { return {2026, 11, 22}; }
        void open(const QString&, desk::Opening, std::function<void()>) override {}
        void close() override {}
        struct Shown : desk::Progress {
            bool advance(int, const QString&) override { return go; }
            bool go;
            explicit Shown(bool go) : go(go) {}
        };
        bool go = true;
        std::unique_ptr<desk::Progress> progress(const QString&) override { return std::make_unique<Shown>(go); }
    } desk;
    printing::writeListing(printed, desk);
    EXPECT_EQ(desk.all.value(1), u"題: 印刷できない文字は〓にしました：\U0001F9FF"_s);
    desk.all.clear();
    desk.go = false;
    printing::writeListing(printed, desk);
    EXPECT_EQ(desk.all, QStringList{u"題: 題の作成を中止しました。"_s});
    EXPECT_EQ(QDir(directory.path()).entryList({u"*.pdf"_s}).size(), 1);
    desk.all.clear();
    desk.go = true;
    const QString registerPath = store::Database::registerPath();
    store::Database::setRegisterPath(path(u"nowhere/Hoshiren.mdb"_s));
    printing::writeListing(printed, desk);
    store::Database::setRegisterPath(registerPath);
    ASSERT_EQ(desk.all.size(), 1);
    EXPECT_TRUE(desk.all[0].startsWith(u"題: 題のPDFファイルを書き出せません。\n"_s)) << desk.all[0].toStdString();
}

} // namespace
