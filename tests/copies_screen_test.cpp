// The screen 控え, and 元に戻す in the bar of the others.
#include "app/screens.h"
#include "store/backup.h"
#include "store/kept_deletion.h"
#include "support/screen_fixture.h"
#include "ui/notice_bar.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

const QString name = u"控え"_s;

class Copies : public ScreenFixture {
  protected:
    Copies() {
        store::Database database;
        store::Table households(database, store::idxdnk_no);
        for (const int number : {5, 6}) {
            auto row = sampleHousehold(static_cast<std::int16_t>(number));
            row.tbldnk_tel += QString::number(number);
            households.insert(row);
        }
        execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_seishikbn) VALUES "
                "(5, '山田', '太郎', '0'), (6, '山田', '次郎', '0')"_s);
    }
    QString copy(int hour = 9) {
        return store::makeBackup(store::Database::registerPath(), store::BackupKind::byHand, {today, QTime(hour, 0)})
            .value();
    }
    QString line(const QString& grid, int row) {
        QStringList cells;
        for (int column = 0; column < control<QTableView>(name, grid).model()->columnCount(); ++column)
            cells << cell(name, grid, row, column);
        cells.removeAll(QString());
        return cells.join(u' ');
    }
    void chooseSource(int row) { clickCell(name, u"控え一覧"_s, row); }
    void chooseRecord(int row) { clickCell(name, u"控え内容"_s, row); }
    QString rows() {
        return query(u"SELECT tbldnk_no1, tbldnk_tel FROM tbl_danka ORDER BY 1"_s) + u'/' +
               query(u"SELECT tblkzk_no1, tblkzk_nameg FROM tbl_kazoku ORDER BY 1"_s);
    }
};

} // namespace

TEST_F(Copies, OneHouseholdComesBackAndOneMember) {
    copy();
    const QString before = rows();
    execute(u"DELETE FROM tbl_danka WHERE tbldnk_no1 = 5; DELETE FROM tbl_kazoku;"
            "INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg) VALUES (6, '山田', '新')"_s);
    open(name);
    EXPECT_EQ(line(u"控え一覧"_s, 1).section(u' ', 0, 4), u"2026/11/22 09:00 手動 登録簿の控え 2"_s);
    expect(u"上の一覧から控えを選んで下さい"_s, name);
    press(name, u"選んで戻す"_s);
    chooseSource(1);
    EXPECT_EQ(line(u"控え内容"_s, 1), u"檀家 5 山田（山田　太郎） 控えだけ 家族 1件"_s);
    EXPECT_EQ(line(u"控え内容"_s, 3), u"檀家 6 山田（山田　太郎） 檀家は同じ 家族 1件"_s);
    EXPECT_EQ(line(u"控え内容"_s, 5), u"家族 6 新 今だけ"_s);
    expect(u"下の一覧から戻す記録を選んで下さい"_s, name);
    press(name, u"選んで戻す"_s);
    chooseRecord(5);
    expect(u"控えにはない記録です。今のまま残っています"_s, name);
    press(name, u"選んで戻す"_s);
    chooseRecord(1);
    answer(u"2026/11/22 09:00の控えから「檀家 5 "
           u"山田（山田　太郎）」と、それに属する1件を戻します。今の記録は変わりません。"
           "よろしいですか？"_s,
           name, true);
    expect(u"元に戻しました（2件）：檀家 5 山田（山田　太郎）、家族 5 太郎"_s, name);
    press(name, u"選んで戻す"_s);
    type(name, u"絞り込み"_s, u"次"_s);
    press(name, u"絞り込む"_s);
    EXPECT_EQ(line(u"控え内容"_s, 1), u"家族 6 次郎 控えだけ"_s);
    chooseRecord(1);
    answer(u"2026/11/22 09:00の控えから「家族 6 次郎」を戻します。今の記録は変わりません。よろしいですか？"_s, name,
           true);
    expect(u"元に戻しました（1件）：家族 6 次郎"_s, name);
    press(name, u"選んで戻す"_s);
    execute(u"DELETE FROM tbl_kazoku WHERE tblkzk_nameg = '新'"_s);
    EXPECT_EQ(rows(), before);
}

// Open screens notice by themselves that the register is another one.
TEST_F(Copies, TheWholeRegisterGoesBackToACopy) {
    copy();
    const QString before = rows();
    execute(u"UPDATE tbl_danka SET tbldnk_tel = '新'"_s);
    workplace->context.publishHousehold(5);
    open(u"檀家登"_s);
    const QString question =
        u"登録簿をまるごと2026/11/22 09:00の控えに戻します。この控えの後に入力したものは、登録簿からな"
        "くなります。今の登録簿も控えとして残します。よろしいですか？"_s;
    open(name);
    chooseSource(1);
    answer(question, name, false);
    press(name, u"全部戻す"_s);
    EXPECT_NE(rows(), before);
    answer(question, name, true);
    expectBeginning(u"登録簿を2026/11/22 09:00の控えに戻しました。\n置き換えた登録簿はここにあります: "_s, name);
    press(name, u"全部戻す"_s);
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(line(u"控え一覧"_s, 1).section(u' ', 2, 4), u"復元で置き換えたもの 登録簿の控え 2"_s);
    chooseSource(1); // not looked over yet: it is now
    EXPECT_EQ(line(u"控え内容"_s, 1), u"檀家 5 山田（山田　太郎） 違う 電話：新 → 03-1234-56785"_s);
    answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    expect(u"登録簿が入れ替わりました。画面を開き直して下さい"_s, u"檀家 登録"_s);
    press(u"檀家登"_s, u"削除"_s);
}

TEST_F(Copies, WhatIsGoneOrDamagedIsToldAndTheListReadAnew) {
    const QString first = copy(9);
    const QString second = copy(10);
    const QString before = rows();
    open(name);
    ASSERT_TRUE(QFile::remove(second));
    expect(u"控え「%1」がありません。取り除かれたか、名前が変わりました。一覧から選び直して下さい。"_s.arg(second),
           name);
    chooseSource(1);
    EXPECT_EQ(line(u"控え一覧"_s, 1).left(16), u"2026/11/22 09:00"_s);
    chooseSource(1);
    ASSERT_TRUE(QFile::resize(first, 9000));
    expectBeginning(u"「%1」は壊れています。"_s.arg(first), name);
    press(name, u"全部戻す"_s);
    expect(u"上の一覧から控えを選んで下さい"_s, name);
    press(name, u"選んで戻す"_s);
    expectBeginning(u"「%1」は壊れています。"_s.arg(first), name);
    chooseSource(1);
    EXPECT_EQ(rows(), before);
    // A register that another program holds: told, and nothing is lost.
    copy(11);
    close(name);
    open(name);
    store::Database holder;
    holder.engine().exec("BEGIN EXCLUSIVE");
    expectBeginning(u"登録簿ファイルは他のプログラムが使用中です。"_s, name);
    chooseSource(1);
    holder.engine().exec("ROLLBACK");
}

// A deletion is listed here after its bar has gone.
TEST_F(Copies, ADeletionComesBackLater) {
    const QString before = rows();
    workplace->context.publishHousehold(5);
    workplace->context.dnk_nameg = u"山田"_s;
    workplace->context.kzk_nameg = u"太郎"_s;
    open(u"家族登"_s);
    answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, u"家族登録"_s, true);
    expect(u"指定された家族は削除されました。"_s, u"家族登録"_s);
    press(u"家族登"_s, u"削除"_s);
    close(u"家族登"_s);
    open(name);
    EXPECT_EQ(cell(name, u"控え一覧"_s, 1, 1) + cell(name, u"控え一覧"_s, 1, 2), u"削除家族 5 太郎"_s);
    chooseSource(1);
    EXPECT_EQ(line(u"控え内容"_s, 1), u"家族 5 太郎 消えたまま"_s);
    const QString time = cell(name, u"控え一覧"_s, 1, 0);
    answer(u"%1の削除（家族 5 太郎）で消えたものをすべて戻します。今の記録は変わりません。よろしいですか？"_s.arg(time),
           name, true);
    expect(u"元に戻しました（1件）：家族 5 太郎"_s, name);
    press(name, u"全部戻す"_s);
    EXPECT_EQ(rows(), before);
}
