#include "app/screens.h"
#include "support/screen_fixture.h"

#include <QApplication>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace {

// Beside its opener, which then shows what it showed; before it, and it is listed anew; before it all the same.
enum class Way { beside, before, beforeOnly };

struct Edge {
    QString opener;
    QString targets; // "button>screen button>screen"
    Way way;
    QString handed; // what the record holds when the screen has loaded: household, deceased, memorial, grave, member
    std::function<void()> reach; // opens the opener and makes the choice that the button works on
};

class Openings : public ScreenFixture {
  protected:
    // Household 7 with two living members, a dead one, her memorials (one booked, one open for notice), a grave of its
    // own and a vacant one.
    void fill() {
        execute(uR"(
            DELETE FROM tbl_danka; DELETE FROM tbl_kazoku; DELETE FROM tbl_kakocho; DELETE FROM tbl_hohyo;
            DELETE FROM tbl_ohaka;
            INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek, tbldnk_yubin, tbldnk_kanaidx) VALUES
              (7, 0, '山田', 'ヤマダ', '100-0001', 'ヤ');
            INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_nameg, tblkzk_namek,
              tblkzk_sei_ymd, tblkzk_zokugara, tblkzk_seishikbn, tblkzk_yubin, tblkzk_jusho1, tblkzk_tel) VALUES
              (7, '山田', 'ヤマダ', 'ハナ', 'ハナ', '1930-01-01', '母', '1', '', '', ''),
              (7, '山田', 'ヤマダ', '太郎', 'タロウ', '1950-01-01', '本人', '0', '', '', ''),
              (7, '山田', 'ヤマダ', '次郎', 'ジロウ', '1980-01-01', '長男', '0', '100-0001', '寺前1', '03-1');
            INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_mei_ymd, tblkak_kaimyoug)
              VALUES (7, '山田', 'ハナ', '2024-12-01', '釈尼花');
            INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei, tblhoy_kaiki_yymd,
              tblhoy_kaiki_rs, tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, tblhoy_kaiki_hour) VALUES
              (7, '山田', 'ハナ', '3回忌', '2026-12-01', 1, '2026-11-29', '1', 10),
              (7, '山田', 'ハナ', '追善', '2027-03-01', 0, NULL, '1', 0);
            INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_dnk_nameg,
              tblhak_bohyo_mei, tblhak_kanri_nxymd, tblhak_kanri_ryokin) VALUES
              (1, '東', '1', 7, '山田', '山田家之墓', '2027-04-01', 5000), (2, '東', '2', 0, '', '', '2027-05-01', 5000);)"_s);
        workplace = std::make_unique<ui::Workplace>(app::screens());
        workplace->today = [this] { return today; };
    }

    // Lists, grids and text boxes of an open screen.
    QString contents(const QString& name) {
        QStringList all;
        for (const auto* box : screen(name).findChildren<QLineEdit*>())
            all += box->text();
        for (const auto* list : screen(name).findChildren<QAbstractItemView*>())
            for (int row = 0; row < list->model()->rowCount(); ++row)
                for (int column = 0; column < list->model()->columnCount(); ++column)
                    all += list->model()->index(row, column).data().toString();
        return all.join(u'\n');
    }

    QString handed() const {
        const desk::ScreenContext& context = workplace->context;
        return QStringList{QString::number(context.dnk_no1), context.kak_zokunameg,
                           context.hoy_kaiki_yymd.toString(Qt::ISODate), QString::number(context.hak_no),
                           context.kzk_nameg}
            .join(u',');
    }

    // A block is filled whole from one row, or holds no more than its keys.
    void expectWholeBlocks() {
        const desk::ScreenContext& context = workplace->context;
        store::Database database;
        if (!context.dnk_namek.isEmpty() || !context.dnk_yubin.isEmpty()) {
            const auto row = store::find(database, store::idxdnk_no, context.dnk_no1, context.dnk_no2);
            ASSERT_TRUE(row);
            EXPECT_EQ(context.dnk_yubin + context.dnk_toshug, row->tbldnk_yubin + row->tbldnk_toshug);
        }
        if (!context.kak_kaimyoug.isEmpty() || context.kak_mei_ymd != QDate(1899, 12, 30)) {
            const auto row = store::find(database, store::idxkak_kakochou, context.dnk_no1, context.dnk_nameg,
                                         context.kak_zokunameg);
            ASSERT_TRUE(row);
            EXPECT_EQ(context.kak_kaimyoug, row->tblkak_kaimyoug);
            EXPECT_EQ(context.kak_mei_ymd, row->tblkak_mei_ymd);
        }
    }

    void choose(const QString& name, const QString& list, const QString& text) {
        auto& box = control<QComboBox>(name, list);
        box.setCurrentIndex(box.findText(text));
        Q_EMIT box.activated(box.currentIndex());
        QCoreApplication::processEvents();
    }
    // The ways to a screen that is about to open another.
    void forHousehold(const QString& name) {
        workplace->context.publishHousehold(7);
        workplace->context.dnk_nameg = u"山田"_s;
        open(name);
    }
    void pick(const QString& name, int row) { clickCell(name, u"frm21_tbl"_s, row, 1); }
    void ofSection(int row) {
        open(u"お墓一"_s);
        choose(u"お墓一"_s, u"frm21_block"_s, u"東"_s);
        pick(u"お墓一"_s, row);
    }
    void link(const QString& picker) {
        if (picker == u"紐区画"_s)
            choose(picker, u"frm21_block"_s, u"東"_s);
        pick(picker, 1);
        press(picker, u"紐付け"_s);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void follow(const Edge& edge, const QString& button, const QString& target) {
        fill();
        edge.reach();
        press(edge.opener, button);
        EXPECT_EQ(screen(target).windowModality() != Qt::NonModal, edge.way != Way::beside);
        EXPECT_EQ(handed(), edge.handed);
        // These two hand over their boxes, saved or not.
        if (edge.opener != u"檀家登"_s && edge.opener != u"代替当"_s)
            expectWholeBlocks();
        const QString before = contents(edge.opener);
        // What every list shows differs afterwards.
        execute(u"UPDATE tbl_kazoku SET tblkzk_bikou = '変更'; UPDATE tbl_kakocho SET tblkak_bikou = '変更';"
                "UPDATE tbl_hohyo SET tblhoy_bikou = '変更';"
                "UPDATE tbl_ohaka SET tblhak_biko = '変更', tblhak_bohyo_mei = '変更'"_s);
        if (target.startsWith(u'紐'))
            link(target);
        else
            close(target);
        EXPECT_EQ(workplace->find(target), nullptr);
        EXPECT_EQ(contents(edge.opener) != before, edge.way == Way::before);
        allShown();
    }
};

} // namespace

TEST_F(Openings, EveryWayFromScreenToScreen) {
    using enum Way;
    const auto menu = [this] {
        open(u"メニュー"_s);
        workplace->context.publishHousehold(7);
    };
    const auto kanaList = [this] {
        open(u"檀家一覧"_s);
        control<QTabWidget>(u"檀家一覧"_s, u"SSTab1"_s).setCurrentIndex(7);
        clickCell(u"檀家一覧"_s, u"DBGrid8"_s, 1, 1);
    };
    const auto succession = [this] {
        forHousehold(u"代替当"_s);
        clickLine(u"代替当"_s, u"frm01_toshug"_s, u"次郎"_s);
    };
    const auto successionDone = [this, succession] {
        succession();
        const QString title = u"代替り処理"_s;
        answer(u"入力された内容で檀家さんを変更しますか？"_s, title, true);
        expect(u"入力された内容で檀家さんは更新されました。"_s, title);
        expect(u"入力された内容で家族は更新されました。"_s, title);
        answer(u"その他の家族の続柄も変更しますか？"_s, title, true);
    };
    // Of household 7 and ハナ, with a row of the list chosen where there is one.
    const auto of = [this](const QString& name, int row = 0, const QString& deceased = {}) {
        return [this, name, row, deceased] {
            workplace->context.publishHousehold(7);
            workplace->context.nameDeceased(u"山田"_s, deceased);
            forHousehold(name);
            if (row)
                pick(name, row);
        };
    };
    const auto grave = [this] {
        workplace->context.publishHousehold(7);
        workplace->context.hak_no = 1;
        forHousehold(u"お墓登"_s);
    };
    const auto linked = [this] { ofSection(1); };
    const auto vacant = [this] { ofSection(2); };
    const auto listed = [this](const QString& name) {
        return [this, name] {
            open(name);
            press(name, u"表示"_s);
            pick(name, 1);
        };
    };

    const QString plain = u"7,,1899-12-30,0,"_s;
    const QString hana = u"7,ハナ,1899-12-30,0,"_s;
    const QString memorial = u"7,ハナ,2026-12-01,0,"_s;
    const QString ofGrave = u"7,,1899-12-30,1,"_s;
    const Edge edges[] = {
        {u"メニュー"_s,
         u"檀家登録>檀家登 一覧表示>檀家一覧 檀家一括登録>檀家一括 檀家一括出力>檀家出力 お墓登録>お墓新 "
         "お墓一覧>お墓一 管理費>お墓通 お墓一括登録>お墓一括 お墓一括出力>お墓出力 法要予定>法要一 法要通知>法要通 "
         "年号登録>年号登 マスター登録>マスター登"_s,
         beside, plain, menu},
        {u"檀家登"_s,
         u"家族一覧>家族一 家族登録>家族登 過去帳一覧>過去一 過去帳登録>過去登 回忌外>法要外 法要一覧>法要檀 代替り>代替当"_s,
         beside, plain, of(u"檀家登"_s)},
        {u"檀家登"_s, u"お墓登録>お墓登"_s, before, plain, of(u"檀家登"_s)},
        {u"檀家一覧"_s, u"照会>檀家登 家族一欄>家族一 過去帳>過去一 法要照会>法要檀"_s, beside, plain, kanaList},
        {u"代替当"_s, u"更新>家族登"_s, beside, plain, successionDone},
        {u"代替当"_s, u"家族一覧>家族一"_s, beside, plain, succession},
        {u"家族一"_s, u"個別照会>過去登"_s, before, hana, of(u"家族一"_s, 1)},
        {u"家族一"_s, u"個別照会>家族登"_s, before, u"7,,1899-12-30,0,太郎"_s, of(u"家族一"_s, 2)},
        {u"過去登"_s, u"法要記録>法要個 回忌外>法要外 代替り>代替当"_s, beside, hana, of(u"過去登"_s, 0, u"ハナ"_s)},
        {u"過去一"_s, u"個別照会>法要個 故人照会>過去登"_s, before, hana, of(u"過去一"_s, 1)},
        {u"お墓登"_s, u"区画紐付>紐区画 墓標紐付>紐墓標"_s, before, ofGrave, grave},
        {u"お墓一"_s, u"お墓>お墓登"_s, before, ofGrave, linked},
        {u"お墓一"_s, u"お墓>お墓新"_s, before, u"0,,1899-12-30,2,"_s, vacant},
        {u"お墓一"_s, u"檀家>檀家登"_s, before, plain, linked},
        {u"お墓通"_s, u"お墓照会>お墓登"_s, before, ofGrave, listed(u"お墓通"_s)},
        {u"お墓通"_s, u"檀家照会>檀家登"_s, before, plain, listed(u"お墓通"_s)},
        {u"法要一"_s, u"故人照会>過去登"_s, before, memorial, listed(u"法要一"_s)},
        {u"法要一"_s, u"檀家照会>檀家登"_s, beforeOnly, plain, listed(u"法要一"_s)},
        {u"法要個"_s, u"個別照会>法要明"_s, before, memorial, of(u"法要個"_s, 1, u"ハナ"_s)},
        {u"法要檀"_s, u"個別照会>法要明"_s, before, memorial, of(u"法要檀"_s, 1)},
        {u"法要檀"_s, u"故人照会>過去登"_s, beside, memorial, of(u"法要檀"_s, 1)},
        {u"法要通"_s, u"故人照会>過去登"_s, beside, u"7,ハナ,2027-03-01,0,"_s, listed(u"法要通"_s)},
        {u"法要通"_s, u"檀家照会>檀家登"_s, beside, plain, listed(u"法要通"_s)},
    };
    for (const Edge& edge : edges) {
        for (const QString& way : edge.targets.split(u' ')) {
            SCOPED_TRACE((edge.opener + u' ' + way).toStdString());
            EXPECT_NO_THROW(follow(edge, way.section(u'>', 0, 0), way.section(u'>', 1)));
        }
    }
}
