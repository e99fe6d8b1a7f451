#include "tour/tour.h"

#include "drive/screen_driver.h"
#include "sample/sample_register.h"
#include "store/table.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPixmap>
#include <QPrinterInfo>
#include <QScopeGuard>
#include <QSettings>
#include <QTabWidget>
#include <QTest>
#include <QTextStream>

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
        // What is chosen here is not what its user chose.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.filePath(u"settings"_s));
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
    void save(QWidget& window, const QString& file) {
        QCoreApplication::processEvents();
        const QString path = folder_.filePath(file + u".png"_s);
        require(window.grab().save(path), u"the picture cannot be written: "_s + path);
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
    void booking();
    void notice();

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
    booking();
    notice();
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
    press(u"檀家登"_s, u"過去帳登録"_s);
    clickLine(name, u"frm11_kazoku"_s, u"山田　キヨ"_s);
    date(name, {u"命日元号"_s, u"命日年"_s, u"命日月"_s, u"命日付"_s}, {u"令和"_s, u"8"_s, u"11"_s, u"3"_s});
    fill(name, {{u"frm11_kaimyoug"_s, u"慈光院徳雲浄真大姉"_s},
                {u"frm11_kaimyouk"_s, u"ジコウイントクウンジョウシンダイシ"_s},
                {u"frm11_kankeisha"_s, u"山田　太郎"_s},
                {u"frm11_続柄"_s, u"母"_s}});
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
    // Four labels of the sheet are used up.
    press(name, u"宛名設定"_s);
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
    close(name);
    done(u"the labels of the notices are in "_s + folder_.filePath(labels.constFirst()));
}

void Tour::documents() {
    open(u"メニュー"_s);
    save(screen(u"メニュー"_s), u"menu"_s);
    workplace->context.publishHousehold(3);
    open(u"檀家登"_s);
    save(screen(u"檀家登"_s), u"household"_s);
    type(u"檀家登"_s, u"frm01_biko"_s, u"年忌の案内は長男へ"_s);
    close(u"檀家登"_s);
    open(u"檀家登"_s);
    save(screen(u"檀家登"_s), u"お知らせ"_s);
    press(u"檀家登"_s, u"捨てる"_s);
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
    for (const QString& name : {u"代替当"_s, u"お墓登"_s, u"お墓通"_s}) {
        open(name);
        if (name == u"お墓通"_s)
            press(name, u"表示"_s);
        save(screen(name), name);
    }
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
