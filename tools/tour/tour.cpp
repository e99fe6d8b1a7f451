#include "tour/tour.h"

#include "drive/screen_driver.h"
#include "sample/sample_register.h"
#include "search/register_finder.h"
#include "store/backup.h"
#include "store/kept_deletion.h"
#include "store/table.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPrinterInfo>
#include <QScopeGuard>
#include <QTabWidget>
#include <QTest>
#include <QTextStream>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

const QDate today(2026, 11, 22);

void require(bool good, const QString& otherwise) {
    if (!good)
        throw std::runtime_error(otherwise.toStdString());
}

class Tour : public drive::ScreenDriver {
  public:
    explicit Tour(const QDir& folder)
        : ScreenDriver([this](const QString& failure) { failures_ += failure; }), folder_(folder) {
        workplace->today = [] { return today; };
        workplace->finder = std::make_unique<search::RegisterFinder>([this] { return workplace->operating(); });
        require(QPrinterInfo::defaultPrinter().isNull(), u"there is a printer, and the label would be printed on it"_s);
    }

    void go();
    void documents();

  private:
    // A part of the road: what was announced must have been shown, and nothing else.
    void done(const QString& what) {
        QCoreApplication::processEvents();
        allShown();
        require(failures_.isEmpty(), what + u": "_s + failures_.join(u'\n'));
        QTextStream(stdout) << "-- " << what << Qt::endl;
    }
    // The window down to this height, where one is given.
    void save(QWidget& window, const QString& file, int height = -1) {
        QCoreApplication::processEvents();
        write(window.grab(QRect(0, 0, window.width(), height < 0 ? window.height() : height)), file);
    }
    void write(const QPixmap& picture, const QString& file) {
        const QString path = folder_.filePath(file + u".png"_s);
        require(picture.save(path), u"the picture cannot be written: "_s + path);
    }
    // A number beside a control, so far before its left edge.
    struct Step {
        QString control;
        int number;
        int before;
    };
    // The screen with the numbers that the steps of a text have.
    void saveNumbered(const QString& screenName, const QString& file, const std::vector<Step>& steps) {
        QCoreApplication::processEvents();
        QPixmap picture = screen(screenName).grab();
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        QFont font = painter.font();
        font.setPixelSize(24);
        font.setBold(true);
        painter.setFont(font);
        for (const Step& step : steps) {
            const QPoint corner = control(screenName, step.control).mapTo(&screen(screenName), QPoint(0, 0));
            const QRect place(corner - QPoint(step.before, 3), QSize(34, 34));
            painter.setBrush(QColor(0xb0, 0x30, 0x20));
            painter.setPen(QPen(Qt::white, 2));
            painter.drawEllipse(place);
            painter.drawText(place, Qt::AlignCenter, QString::number(step.number));
        }
        painter.end();
        write(picture, file);
    }
    // How far down a control of the screen reaches.
    int bottomOf(const QString& screenName, const QString& name) {
        const QWidget& box = control(screenName, name);
        return box.mapTo(&screen(screenName), QPoint(0, box.height())).y();
    }
    void picture(const QString& screenName) {
        save(screen(screenName), u"%1-%2"_s.arg(++pictures_, 2, 10, QChar(u'0')).arg(screenName));
    }
    void fill(const QString& screenName, const std::vector<std::pair<QString, QString>>& boxes) {
        for (const auto& [name, value] : boxes)
            type(screenName, name, value);
    }
    // "昭和", "5", "5", "10" into the boxes of a date group.
    void date(const QString& screenName, const QStringList& boxes, const QStringList& values) {
        for (qsizetype i = 0; i < boxes.size(); ++i)
            type(screenName, boxes[i], values[i]);
    }
    static int count(const char* rows) {
        store::Database database;
        SQLite::Statement statement(database.engine(), std::string("SELECT count(*) FROM ") + rows);
        statement.executeStep();
        return statement.getColumn(0).getInt();
    }

    void household();
    void member(const QString& name, const QString& kana, const QStringList& birth, const QString& relationship);
    void death();
    void undo();
    void booking();
    void notice();
    void report();
    // A report chosen on 帳票 with its boxes, as its preview shows it.
    QDialog& previewOf(const QString& report, const std::vector<std::pair<QString, QString>>& boxes = {});
    void move();
    void copies();
    void search();
    void searchFor(const QString& words);
    void settings();

    QDir folder_;
    QStringList failures_;
    int pictures_ = 0;
};

void Tour::go() {
    open(u"メニュー"_s);
    picture(u"メニュー"_s);
    household();
    press(u"檀家登"_s, u"家族登録"_s);
    member(u"山田　太郎"_s, u"ヤマダ タロウ"_s, {u"昭和"_s, u"30"_s, u"4"_s, u"1"_s}, u"本人"_s);
    member(u"山田　花子"_s, u"ヤマダ ハナコ"_s, {u"昭和"_s, u"33"_s, u"8"_s, u"15"_s}, u"妻"_s);
    member(u"山田　キヨ"_s, u"ヤマダ キヨ"_s, {u"昭和"_s, u"5"_s, u"5"_s, u"10"_s}, u"母"_s);
    picture(u"家族登"_s);
    close(u"家族登"_s);
    death();
    undo();
    booking();
    notice();
    report();
    copies();
    search();
}

void Tour::household() {
    const QString name = u"檀家登"_s;
    press(u"メニュー"_s, u"檀家登録"_s);
    fill(name, {{u"frm01_dankag"_s, u"山田"_s},
                {u"frm01_dankak"_s, u"ヤマダ"_s},
                {u"frm01_toshug"_s, u"山田　太郎"_s},
                {u"frm01_toshuk"_s, u"ヤマダ タロウ"_s},
                {u"frm01_yubinno"_s, u"380-0001"_s},
                {u"frm01_jyusho1"_s, u"寺前1丁目2-3"_s},
                {u"frm01_tel"_s, u"026-123-4567"_s},
                {u"frm01_地区"_s, u"寺前地区"_s}});
    answer(u"入力された内容で檀家さんを登録します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    press(name, u"登録"_s);
    require(count("tbl_danka WHERE tbldnk_no1 = 1 AND tbldnk_toshug = '山田　太郎'") == 1, u"no household 1"_s);
    picture(name);
    done(u"a household is registered"_s);
}

void Tour::member(const QString& memberName, const QString& kana, const QStringList& birth,
                  const QString& relationship) {
    const QString name = u"家族登"_s;
    fill(name, {{u"frm12_nameg"_s, memberName}, {u"frm12_namek"_s, kana}, {u"frm12_続柄"_s, relationship}});
    date(name, {u"生年元号"_s, u"生年"_s, u"生年月"_s, u"生年日"_s}, birth);
    press(name, u"frm12_dohkyo"_s);
    answer(u"入力された内容で家族の登録をします。内容を確認して下さい。"_s, u"家族登録"_s, true);
    expect(u"入力された内容で家族は登録されました。"_s, u"家族登録"_s);
    press(name, u"登録"_s);
    done(u"a member is registered: "_s + memberName);
}

void Tour::death() {
    const QString name = u"過去登"_s;
    const QString title = u"過去帳登録"_s;
    close(u"檀家登"_s);
    searchFor(u"山田"_s);
    QTest::keyClick(&control(u"メニュー"_s, u"さがす"_s), Qt::Key_Return);
    press(u"檀家登"_s, u"過去帳登録"_s);
    clickLine(name, u"frm11_kazoku"_s, u"山田　キヨ"_s);
    date(name, {u"命日元号"_s, u"命日年"_s, u"命日月"_s, u"命日付"_s}, {u"令和"_s, u"8"_s, u"11"_s, u"3"_s});
    fill(name, {{u"frm11_kaimyoug"_s, u"慈光院徳雲浄真大姉"_s},
                {u"frm11_kaimyouk"_s, u"ジコウイントクウンジョウシンダイシ"_s},
                {u"frm11_kankeisha"_s, u"山田　太郎"_s},
                {u"frm11_続柄"_s, u"母"_s}});
    saveNumbered(name, u"はじめに-過去帳登録"_s,
                 {{u"frm11_kazoku"_s, 2, 72}, {u"命日元号"_s, 3, 96}, {u"frm11_kaimyoug"_s, 4, 96}, {u"登録"_s, 5, 9}});
    answer(u"入力された内容で過去帳の登録をします。内容を確認して下さい。"_s, title, true);
    expect(u"入力された内容で過去帳は登録されました。"_s, title);
    answer(u"法要等の登録も行いますか？"_s, title, true);
    expect(u"法要等の登録を終了した。"_s, title);
    press(name, u"登録"_s);
    require(text(name, u"frm11_kyounen"_s) == u"96"_s, u"the age at death is wrong"_s);
    require(count("tbl_kazoku WHERE tblkzk_nameg = '山田　キヨ' AND tblkzk_seishikbn = '1'") == 1,
            u"the member is not marked deceased"_s);
    require(count("tbl_hohyo") == 14, u"there are not fourteen memorials"_s);
    picture(name);
    close(name);
    done(u"a death is registered, and its fourteen memorials"_s);

    press(u"檀家登"_s, u"過去帳一覧"_s);
    require(cell(u"過去一"_s, u"frm21_tbl"_s, 1, 6) == u"49日"_s, u"the next memorial is not the 49th day"_s);
    picture(u"過去一"_s);
    close(u"過去一"_s);
    done(u"the death register shows the next memorial"_s);
}

void Tour::undo() {
    const QString name = u"過去登"_s;
    const QString title = u"過去帳登録"_s;
    press(u"檀家登"_s, u"過去帳登録"_s);
    clickLine(name, u"frm11_kakocho"_s, u"山田　キヨ"_s);
    answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, title, true);
    answer(u"法要等の情報も削除しますか？"_s, title, true);
    answer(u"家族登録は元に戻しますか？"_s, title, true);
    expect(u"削除処理を終了しました。"_s, title);
    press(name, u"削除"_s);
    require(count("tbl_kakocho") == 0 && count("tbl_hohyo") == 0, u"the entry is still there"_s);
    press(name, u"元に戻す"_s);
    require(count("tbl_kakocho") == 1 && count("tbl_hohyo") == 14 &&
                count("tbl_kazoku WHERE tblkzk_nameg = '山田　キヨ' AND tblkzk_seishikbn = '1'") == 1,
            u"the entry is not back as it was"_s);
    require(text(name, u"frm11_kaimyoug"_s) == u"慈光院徳雲浄真大姉"_s, u"the entry is not shown again"_s);
    close(name);
    done(u"a deleted entry is back with its memorials"_s);
}

void Tour::booking() {
    const QString list = u"法要檀"_s;
    const QString detail = u"法要明"_s;
    press(u"檀家登"_s, u"法要一覧"_s);
    clickCell(list, u"frm21_tbl"_s, 1);
    press(list, u"個別照会"_s);
    press(detail, u"予約日"_s);
    press(detail, u"frm31_am"_s);
    fill(detail, {{u"開始時"_s, u"10"_s}, {u"開始分"_s, u"30"_s}, {u"frm31_法要場所"_s, u"本堂"_s}});
    clickLine(detail, u"frm31_kankeisha"_s, u"山田　太郎"_s);
    type(detail, u"frm31_続柄"_s, u"長男"_s);
    answer(u"入力された内容で法要を変更します。内容を確認して下さい。"_s, u"法要明細"_s, true);
    expect(u"入力された内容で法要は更新されました。"_s, u"法要明細"_s);
    press(detail, u"更新"_s);
    picture(detail);
    close(detail);
    require(cell(list, u"frm21_tbl"_s, 1, 4) == u"予"_s, u"the list does not show the booking"_s);
    picture(list);
    close(list);
    done(u"the 49th day is booked"_s);

    press(u"メニュー"_s, u"法要予定"_s);
    press(u"法要一"_s, u"表示"_s);
    require(cell(u"法要一"_s, u"frm21_tbl"_s, 1, 4) == u"山田　キヨ"_s, u"the booking is not in the book"_s);
    picture(u"法要一"_s);
    close(u"法要一"_s);
    done(u"the reservation book shows it"_s);
}

void Tour::notice() {
    const QString name = u"法要通"_s;
    press(u"メニュー"_s, u"法要通知"_s);
    press(name, u"表示"_s);
    // The 49th day is booked; the 100th day and the first anniversary are to be announced.
    require(cell(name, u"frm21_tbl"_s, 1, 3) == u"100ｹ日"_s && cell(name, u"frm21_tbl"_s, 2, 3) == u"1周忌"_s,
            u"the list of notices is wrong"_s);
    picture(name);
    press(name, u"宛名設定"_s);
    const QString labels12 = text(u"宛名設定"_s, u"用紙"_s);
    type(u"宛名設定"_s, u"用紙"_s, u"はがき　宛名縦書き"_s);
    press(u"宛名設定"_s, u"設定"_s);
    press(name, u"印刷プレビュー"_s);
    auto* card = screen(name).findChild<QDialog*>(u"宛名プレビュー"_s);
    require(card, u"there is no preview of a postcard"_s);
    save(*card, u"はがき"_s);
    card->close();
    // Four labels of the sheet are used up.
    press(name, u"宛名設定"_s);
    type(u"宛名設定"_s, u"用紙"_s, labels12);
    QTest::keyClick(&control(u"宛名設定"_s, u"開始位置"_s), Qt::Key_Down);
    QTest::keyClick(&control(u"宛名設定"_s, u"開始位置"_s), Qt::Key_Down);
    require(text(u"宛名設定"_s, u"開始番号"_s) == u"5"_s, u"the fifth label is not the first free one"_s);
    save(screen(u"宛名設定"_s), u"宛名設定"_s);
    press(u"宛名設定"_s, u"設定"_s);
    press(name, u"印刷プレビュー"_s);
    auto* sheet = screen(name).findChild<QDialog*>(u"宛名プレビュー"_s);
    require(sheet && sheet->findChild<QLabel*>(u"件数"_s)->text().endsWith(u"5番目のラベルから"_s),
            u"the preview does not begin with the fifth label"_s);
    sheet->close();
    expectBeginning(u"プリンターがないため、宛名をPDFファイルに書き出しました。\n"_s, u"宛名印刷"_s);
    press(name, u"通知"_s);
    const QStringList labels = folder_.entryList({u"*.pdf"_s});
    require(labels.size() == 1 && QFileInfo(folder_.filePath(labels.constFirst())).size() > 0, u"there is no label"_s);
    require(count("tbl_hohyo WHERE tblhoy_tsuchi_s = 1 AND tblhoy_tsuchi_ymd = '2026-11-22'") == 2,
            u"the memorials are not marked as announced"_s);
    done(u"the labels of the notices are in "_s + folder_.filePath(labels.constFirst()));

    answer(u"2026/11/22の通知処理を取り消します。\n2件の法要を通知前に戻します。よろしいですか？"_s, u"法要通知"_s,
           true);
    press(name, u"通知取消"_s);
    require(count("tbl_hohyo WHERE tblhoy_tsuchi_s = 1") == 0, u"the notices are not taken back"_s);
    close(name);
    done(u"and are taken back"_s);
}

QDialog& Tour::previewOf(const QString& report, const std::vector<std::pair<QString, QString>>& boxes) {
    type(u"帳票"_s, u"帳票種類"_s, report);
    fill(u"帳票"_s, boxes);
    press(u"帳票"_s, u"プレビュー"_s);
    auto* shown = screen(u"帳票"_s).findChild<QDialog*>(report + u"プレビュー"_s);
    require(shown, u"there is no preview of "_s + report);
    shown->resize(960, 730); // a page read across is seen whole
    return *shown;
}

void Tour::report() {
    press(u"メニュー"_s, u"帳票"_s);
    picture(u"帳票"_s);
    previewOf(u"年回表"_s).close();
    expect(u"プリンターがないため、年回表をPDFファイルに書き出しました。\n"_s +
               folder_.absoluteFilePath(u"年回表_20261122.pdf"_s),
           u"年回表"_s);
    press(u"帳票"_s, u"印刷"_s);
    require(QFileInfo(folder_.filePath(u"年回表_20261122.pdf"_s)).size() > 0, u"there is no list of anniversaries"_s);
    close(u"帳票"_s);
    done(u"the coming year's anniversaries are printed"_s);
}

// A date as it is spoken, and the family that a household which moved has left behind.
void Tour::move() {
    const QString name = u"檀家登"_s;
    open(u"家族登"_s);
    type(u"家族登"_s, u"生年元号"_s, u"昭20.8.15"_s);
    save(screen(u"家族登"_s), u"日付"_s);
    close(u"家族登"_s);
    fill(name, {{u"frm01_yubinno"_s, u"220-0001"_s}, {u"frm01_jyusho1"_s, u"港町1丁目1-1"_s}});
    answer(u"入力された内容で檀家さんを変更します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    expect(u"入力された内容で檀家さんは更新されました。"_s, u"檀家 登録"_s);
    press(name, u"更新"_s);
    save(screen(name), u"引っ越し"_s);
    press(name, u"家族も直す"_s);
    done(u"a household has moved"_s);
}

void Tour::copies() {
    const QString name = u"控え"_s;
    store::makeBackup(store::Database::registerPath(), store::BackupKind::byHand, QDateTime(today, QTime(9, 0)));
    answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    expect(u"指定された檀家さんは削除されました。"_s, u"檀家 登録"_s);
    press(u"檀家登"_s, u"削除"_s);
    press(u"メニュー"_s, u"控え"_s);
    clickCell(name, u"控え一覧"_s, 2);
    clickCell(name, u"控え内容"_s, 1);
    answer(u"2026/11/22 09:00の控えから「檀家 1 山田（山田　太郎）」と、それに属する18件を戻します。"
           "今の記録は変わりません。よろしいですか？"_s,
           u"控え"_s, true);
    expectBeginning(u"元に戻しました（1件）：檀家 1 山田（山田　太郎）"_s, u"控え"_s);
    press(name, u"選んで戻す"_s);
    require(count("tbl_danka WHERE tbldnk_no1 = 1") == 1, u"the household is not back"_s);
    close(name);
    done(u"a household is back from a copy"_s);
}

// What is typed on the menu, once the texts have been read.
void Tour::searchFor(const QString& words) {
    const QString menu = u"メニュー"_s;
    screen(menu).activateWindow();
    require(QTest::qWaitForWindowActive(&screen(menu)), u"the menu does not come to the front"_s);
    QTest::keyClick(&screen(menu), Qt::Key_F3);
    auto& box = control<QLineEdit>(menu, u"さがす"_s);
    require(QApplication::focusWidget() == &box, u"F3 does not lead to the search"_s);
    box.setText(words);
    const auto& results = control<QTableView>(menu, u"さがす結果"_s);
    require(QTest::qWaitFor([&] { return results.isVisible() && results.model()->rowCount() > 0; }, 10'000),
            u"nothing is found for "_s + words);
}

void Tour::search() {
    const QString menu = u"メニュー"_s;
    searchFor(u"徳雲"_s);
    picture(menu);
    QTest::keyClick(&control(menu, u"さがす"_s), Qt::Key_Return);
    require(text(u"過去登"_s, u"frm11_zoknameg"_s) == u"山田　キヨ"_s, u"the entry was not opened"_s);
    close(u"過去登"_s);
    close(u"檀家登"_s);
    searchFor(u"4567"_s);
    QTest::keyClick(&control(menu, u"さがす"_s), Qt::Key_Return);
    require(text(u"檀家登"_s, u"frm01_toshug"_s) == u"山田　太郎"_s, u"the household was not opened"_s);
    done(u"the dead is found by her posthumous name, her family by the end of its telephone number"_s);
}

// Larger letters at once, on what is open, too.
void Tour::settings() {
    const QString name = u"設定"_s;
    press(u"メニュー"_s, name);
    save(screen(name), name);
    press(name, u"特大"_s);
    save(screen(u"檀家登"_s), u"特大"_s);
    press(name, u"標準"_s);
    close(name);
}

void Tour::documents() {
    open(u"メニュー"_s);
    save(screen(u"メニュー"_s), u"menu"_s);
    searchFor(u"さいとう 東"_s);
    save(screen(u"メニュー"_s), u"search"_s);
    save(screen(u"メニュー"_s), u"はじめに-さがす"_s, bottomOf(u"メニュー"_s, u"さがす結果"_s) + 34);
    QTest::keyClick(&control(u"メニュー"_s, u"さがす"_s), Qt::Key_Escape);
    workplace->context.publishHousehold(3);
    open(u"檀家登"_s);
    save(screen(u"檀家登"_s), u"household"_s);
    settings();
    type(u"檀家登"_s, u"frm01_biko"_s, u"年忌の案内は長男へ"_s);
    close(u"檀家登"_s);
    open(u"檀家登"_s);
    save(screen(u"檀家登"_s), u"お知らせ"_s);
    press(u"檀家登"_s, u"捨てる"_s);
    move();
    open(u"檀家一覧"_s);
    control<QTabWidget>(u"檀家一覧"_s, u"SSTab1"_s).setCurrentIndex(1);
    clickCell(u"檀家一覧"_s, u"DBGrid2"_s, 3, 1);
    save(screen(u"檀家一覧"_s), u"list"_s);
    open(u"法要通"_s);
    press(u"法要通"_s, u"印刷プレビュー"_s);
    auto* sheet = screen(u"法要通"_s).findChild<QDialog*>(u"宛名プレビュー"_s);
    require(sheet, u"there is no preview of the labels"_s);
    save(*sheet, u"labels"_s);
    sheet->close();
    open(u"帳票"_s);
    const std::vector<std::pair<QString, std::vector<std::pair<QString, QString>>>> reports{
        {u"年回表"_s, {}},
        {u"祥月命日表"_s, {}},
        {u"檀家名簿"_s, {{u"帳票区分"_s, u"五十音順（家族付き）"_s}}},
        {u"お墓台帳"_s, {}},
        {u"法要予定表"_s, {{u"帳票月"_s, u"12"_s}}},
        {u"管理費請求一覧"_s, {}}};
    for (const auto& [report, boxes] : reports) {
        QDialog& shown = previewOf(report, boxes);
        save(shown, report);
        shown.close();
    }
    for (const QString& name : {u"代替当"_s, u"お墓登"_s, u"お墓通"_s}) {
        open(name);
        if (name == u"お墓通"_s)
            press(name, u"表示"_s);
        if (name == u"代替当"_s)
            clickLine(name, u"frm01_toshug"_s, control<QListWidget>(name, u"frm01_toshug"_s).item(1)->text());
        save(screen(name), name);
    }
    const QString death = u"過去登"_s;
    open(death);
    clickLine(death, u"frm11_kazoku"_s, control<QListWidget>(death, u"frm11_kazoku"_s).item(1)->text());
    expect(u"命日に正しく入力して下さい"_s, u"過去帳登録"_s);
    press(death, u"登録"_s);
    save(screen(death), u"間違い"_s, bottomOf(death, u"frm11_続柄"_s) + 6);
    store::makeBackup(store::Database::registerPath(), store::BackupKind::daily, QDateTime(today, QTime(9, 0)));
    {
        store::Database database;
        store::keepDeletion(store::Database::registerPath(), store::householdIn(database, 5), u"抹消"_s,
                            u"檀家 5 ほか4件"_s, QDateTime(today, QTime(10, 0)));
        database.engine().exec("DELETE FROM tbl_danka WHERE tbldnk_no1 = 5; "
                               "DELETE FROM tbl_kazoku WHERE tblkzk_no1 = 5; "
                               "UPDATE tbl_danka SET tbldnk_tel = '026-111-2222' WHERE tbldnk_no1 = 8");
    }
    open(u"控え"_s);
    clickCell(u"控え"_s, u"控え一覧"_s, 2);
    clickCell(u"控え"_s, u"控え内容"_s, 1);
    save(screen(u"控え"_s), u"控え"_s);
    answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    expect(u"指定された檀家さんは削除されました。"_s, u"檀家 登録"_s);
    press(u"檀家登"_s, u"削除"_s);
    save(screen(u"檀家登"_s), u"元に戻す"_s);
    save(screen(u"檀家登"_s), u"はじめに-元に戻す"_s, bottomOf(u"檀家登"_s, u"元に戻す"_s) + 5);
    done(u"the documents' other pictures"_s);
}

} // namespace

void roadOfOneDeath(const QDir& folder) {
    require(folder.entryList({u"*.pdf"_s}).isEmpty(), u"the folder holds another tour's label"_s);
    store::Database::setRegisterPath(folder.absoluteFilePath(u"Hoshiren.mdb"_s));
    store::createRegister(store::Database::registerPath());
    Tour(folder).go();
}

void documentPictures(const QDir& folder) {
    // A folder of one name: the menu shows it, and the picture should be the same each time.
    QDir scratch(QDir::temp().filePath(u"hoshiren-sample"_s));
    require(!scratch.exists() && scratch.mkpath(u"."_s), u"this folder is in the way: "_s + scratch.path());
    const auto removed = qScopeGuard([&scratch] { scratch.removeRecursively(); });
    store::Database::setRegisterPath(scratch.filePath(u"Hoshiren.mdb"_s));
    sample::makeRegister(store::Database::registerPath(), 300, today);
    Tour(folder).documents();
}

} // namespace tour
