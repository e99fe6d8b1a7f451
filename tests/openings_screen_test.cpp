#include "app/screens.h"
#include "support/screen_fixture.h"

#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace {

const QString zeroDate = u"1899-12-30"_s;

// What the record holds when the opened screen has loaded.
struct Handed {
    int household = 7;
    QString deceased = {};
    QString memorial = zeroDate;
    int grave = 0;
    QString member = {};

    bool operator==(const Handed&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Handed& handed) {
    return out << handed.household << ' ' << handed.deceased.toStdString() << ' ' << handed.memorial.toStdString()
               << ' ' << handed.grave << ' ' << handed.member.toStdString();
}

enum class Return { keeps, refreshes };

class Openings : public ScreenFixture {
  protected:
    // Household 7 with two living members, a dead one, her memorials (one booked, one open for notice), a grave of its
    // own and a vacant one.
    void fill() {
        execute(uR"(
            DELETE FROM tbl_danka; DELETE FROM tbl_kazoku; DELETE FROM tbl_kakocho; DELETE FROM tbl_hohyo;
            DELETE FROM tbl_ohaka;
            INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek, tbldnk_dnkkbn, tbldnk_yubin,
              tbldnk_jyusho1, tbldnk_tel, tbldnk_kanaidx, tbldnk_haka_basho, tbldnk_toshug, tbldnk_toshuk) VALUES
              (7, 0, '山田', 'ヤマダ', '檀家', '100-0001', '寺前1', '03-1', 'ヤ', '境内', '太郎', 'タロウ');
            INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_nameg, tblkzk_namek,
              tblkzk_sei_gname, tblkzk_sei_gyy, tblkzk_sei_gmm, tblkzk_sei_gdd, tblkzk_sei_ymd, tblkzk_zokugara,
              tblkzk_dohkyokbn, tblkzk_seishikbn, tblkzk_yubin, tblkzk_jusho1, tblkzk_tel) VALUES
              (7, '山田', 'ヤマダ', 'ハナ', 'ハナ', '昭和', 5, 1, 1, '1930-01-01', '母', '0', '1', '100-0001', '寺前1', '03-1'),
              (7, '山田', 'ヤマダ', '太郎', 'タロウ', '昭和', 25, 1, 1, '1950-01-01', '本人', '0', '0', '100-0001', '寺前1', '03-1'),
              (7, '山田', 'ヤマダ', '次郎', 'ジロウ', '昭和', 55, 1, 1, '1980-01-01', '長男', '0', '0', '100-0001', '寺前1', '03-1');
            INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_dnknamek, tblkak_zokunameg, tblkak_zokunamek,
              tblkak_sei_gname, tblkak_sei_gyy, tblkak_sei_gmm, tblkak_sei_gdd, tblkak_sei_ymd, tblkak_mei_gname,
              tblkak_mei_gyy, tblkak_mei_gmm, tblkak_mei_gdd, tblkak_mei_ymd, tblkak_kyounen, tblkak_kaimyoug,
              tblkak_kaimyouk, tblkak_kankeisha, tblkak_zokugara, tblkak_haka_basho) VALUES
              (7, '山田', 'ヤマダ', 'ハナ', 'ハナ', '昭和', 5, 1, 1, '1930-01-01', '令和', 6, 12, 1, '2024-12-01', 94, '釋浄光',
               'シャクジョウコウ', '太郎', '母', '境外');
            INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_danknamek, tblhoy_zokunameg, tblhoy_zokunamek,
              tblhoy_kaimyog, tblhoy_meiymd, tblhoy_kaiki_mei, tblhoy_kaiki_yymd, tblhoy_kaiki_rs, tblhoy_kaiki_rymd,
              tblhoy_kaiki_ampm, tblhoy_kaiki_hour, tblhoy_kaiki_mint, tblhoy_ofuse) VALUES
              (7, '山田', 'ヤマダ', 'ハナ', 'ハナ', '釋浄光', '2024-12-01', '3回忌', '2026-12-01', 1, '2026-11-29', '1', 10, 0, 0),
              (7, '山田', 'ヤマダ', 'ハナ', 'ハナ', '釋浄光', '2024-12-01', '追善', '2027-03-01', 0, NULL, '1', 0, 0, 0);
            INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_dnk_kbn,
              tblhak_dnk_nameg, tblhak_dnk_namek, tblhak_bohyo_kbn, tblhak_bohyo_mei, tblhak_kanri_nxymd,
              tblhak_shiyo_ryokin, tblhak_kanri_ryokin) VALUES
              (1, '東', '1', 7, '檀家', '山田', 'ヤマダ', '家', '山田家之墓', '2027-04-01', 30000, 5000),
              (2, '東', '2', 0, '', '', '', '空', '', '2027-05-01', 30000, 5000);)"_s);
        workplace = std::make_unique<ui::Workplace>(app::screens());
        workplace->today = [this] { return today; };
    }

    // What every list shows differs afterwards.
    void changeAll() {
        execute(u"UPDATE tbl_kazoku SET tblkzk_bikou = '変更'; UPDATE tbl_kakocho SET tblkak_bikou = '変更';"
                "UPDATE tbl_hohyo SET tblhoy_bikou = '変更';"
                "UPDATE tbl_ohaka SET tblhak_biko = '変更', tblhak_bohyo_mei = '変更'"_s);
    }

    // Lists, grids and text boxes of an open screen.
    QString contents(const QString& name) {
        QStringList all;
        for (const auto* box : screen(name).findChildren<QLineEdit*>())
            all += box->text();
        for (const auto* list : screen(name).findChildren<QListWidget*>())
            for (int line = 0; line < list->count(); ++line)
                all += list->item(line)->text();
        for (const auto* grid : screen(name).findChildren<QTableView*>())
            for (int row = 0; row < grid->model()->rowCount(); ++row)
                for (int column = 0; column < grid->model()->columnCount(); ++column)
                    all += grid->model()->index(row, column).data().toString();
        return all.join(u'\n');
    }

    Handed handed() const {
        const desk::ScreenContext& context = workplace->context;
        return {context.dnk_no1, context.kak_zokunameg, context.hoy_kaiki_yymd.toString(Qt::ISODate), context.hak_no,
                context.kzk_nameg};
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
    void forDeceased(const QString& name) {
        workplace->context.publishHousehold(7);
        workplace->context.dnk_nameg = u"山田"_s;
        workplace->context.chooseDeceased(u"ハナ"_s);
        open(name);
    }
    void pick(const QString& name, int row) { clickCell(name, u"frm21_tbl"_s, row, 1); }
    void listAndPick(const QString& name, int row) {
        open(name);
        press(name, u"表示"_s);
        pick(name, row);
    }
    void ofSection(int row) {
        open(u"お墓一"_s);
        choose(u"お墓一"_s, u"frm21_block"_s, u"東"_s);
        pick(u"お墓一"_s, row);
    }
    void ofGrave() {
        workplace->context.hak_no = 1;
        forHousehold(u"お墓登"_s);
    }
    void link(const QString& picker) {
        if (picker == u"紐区画"_s)
            choose(picker, u"frm21_block"_s, u"東"_s);
        pick(picker, 1);
        press(picker, u"紐付け"_s);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

struct Edge {
    QString opener;
    QString button;
    QString target;
    desk::Opening how;
    Return after;
    Handed handed;
    std::function<void()> reach; // opens the opener and makes the choice that the button works on
};

} // namespace

TEST_F(Openings, EveryWayFromScreenToScreen) {
    constexpr auto modeless = desk::Opening::modeless;
    constexpr auto modal = desk::Opening::modal;
    constexpr auto keeps = Return::keeps;
    constexpr auto refreshes = Return::refreshes;
    const QString booked = u"2026-12-01"_s;
    const QString noticed = u"2027-03-01"_s;
    const auto menu = [this] {
        open(u"メニュー"_s);
        workplace->context.publishHousehold(7);
    };
    const auto household = [this] { forHousehold(u"檀家登"_s); };
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
    const auto member = [this](int row) {
        return [this, row] {
            forHousehold(u"家族一"_s);
            pick(u"家族一"_s, row);
        };
    };
    const auto entry = [this] { forDeceased(u"過去登"_s); };
    const auto deceased = [this] {
        forHousehold(u"過去一"_s);
        clickCell(u"過去一"_s, u"frm21_tbl"_s, 1, 0);
    };
    const auto grave = [this] { ofGrave(); };
    const auto linked = [this] { ofSection(1); };
    const auto vacant = [this] { ofSection(2); };
    const auto listed = [this](const QString& name) { return [this, name] { listAndPick(name, 1); }; };
    const auto ofOne = [this] {
        forDeceased(u"法要個"_s);
        pick(u"法要個"_s, 1);
    };
    const auto ofHousehold = [this] {
        forHousehold(u"法要檀"_s);
        pick(u"法要檀"_s, 1);
    };

    const Handed plain;
    const Handed hana{.deceased = u"ハナ"_s};
    const Edge edges[] = {
        {u"メニュー"_s, u"檀家登録"_s, u"檀家登"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"一覧表示"_s, u"檀家一覧"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"檀家一括登録"_s, u"檀家一括"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"檀家一括出力"_s, u"檀家出力"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"お墓登録"_s, u"お墓新"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"お墓一覧"_s, u"お墓一"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"管理費"_s, u"お墓通"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"お墓一括登録"_s, u"お墓一括"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"お墓一括出力"_s, u"お墓出力"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"法要予定"_s, u"法要一"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"法要通知"_s, u"法要通"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"年号登録"_s, u"年号登"_s, modeless, keeps, plain, menu},
        {u"メニュー"_s, u"マスター登録"_s, u"マスター登"_s, modeless, keeps, plain, menu},

        {u"檀家登"_s, u"家族一覧"_s, u"家族一"_s, modeless, keeps, plain, household},
        {u"檀家登"_s, u"家族登録"_s, u"家族登"_s, modeless, keeps, plain, household},
        {u"檀家登"_s, u"過去帳一覧"_s, u"過去一"_s, modeless, keeps, plain, household},
        {u"檀家登"_s, u"過去帳登録"_s, u"過去登"_s, modeless, keeps, plain, household},
        {u"檀家登"_s, u"回忌外"_s, u"法要外"_s, modeless, keeps, plain, household},
        {u"檀家登"_s, u"法要一覧"_s, u"法要檀"_s, modeless, keeps, plain, household},
        {u"檀家登"_s, u"代替り"_s, u"代替当"_s, modeless, keeps, plain, household},
        {u"檀家登"_s, u"お墓登録"_s, u"お墓登"_s, modal, refreshes, plain, household},

        {u"檀家一覧"_s, u"照会"_s, u"檀家登"_s, modeless, keeps, plain, kanaList},
        {u"檀家一覧"_s, u"家族一欄"_s, u"家族一"_s, modeless, keeps, plain, kanaList},
        {u"檀家一覧"_s, u"過去帳"_s, u"過去一"_s, modeless, keeps, plain, kanaList},
        {u"檀家一覧"_s, u"法要照会"_s, u"法要檀"_s, modeless, keeps, plain, kanaList},

        {u"代替当"_s, u"更新"_s, u"家族登"_s, modeless, keeps, plain, successionDone},
        {u"代替当"_s, u"家族一覧"_s, u"家族一"_s, modeless, keeps, plain, succession},

        {u"家族一"_s, u"個別照会"_s, u"過去登"_s, modal, refreshes, hana, member(1)},
        {u"家族一"_s, u"個別照会"_s, u"家族登"_s, modal, refreshes, {.member = u"太郎"_s}, member(2)},

        {u"過去登"_s, u"法要記録"_s, u"法要個"_s, modeless, keeps, hana, entry},
        {u"過去登"_s, u"回忌外"_s, u"法要外"_s, modeless, keeps, hana, entry},
        {u"過去登"_s, u"代替り"_s, u"代替当"_s, modeless, keeps, hana, entry},

        {u"過去一"_s, u"個別照会"_s, u"法要個"_s, modal, refreshes, hana, deceased},
        {u"過去一"_s, u"故人照会"_s, u"過去登"_s, modal, refreshes, hana, deceased},

        {u"お墓登"_s, u"区画紐付"_s, u"紐区画"_s, modal, refreshes, {.grave = 1}, grave},
        {u"お墓登"_s, u"墓標紐付"_s, u"紐墓標"_s, modal, refreshes, {.grave = 1}, grave},

        {u"お墓一"_s, u"お墓"_s, u"お墓登"_s, modal, refreshes, {.grave = 1}, linked},
        {u"お墓一"_s, u"お墓"_s, u"お墓新"_s, modal, refreshes, {.household = 0, .grave = 2}, vacant},
        {u"お墓一"_s, u"檀家"_s, u"檀家登"_s, modal, refreshes, plain, linked},

        {u"お墓通"_s, u"お墓照会"_s, u"お墓登"_s, modal, refreshes, {.grave = 1}, listed(u"お墓通"_s)},
        {u"お墓通"_s, u"檀家照会"_s, u"檀家登"_s, modal, refreshes, plain, listed(u"お墓通"_s)},

        {u"法要一"_s,
         u"故人照会"_s,
         u"過去登"_s,
         modal,
         refreshes,
         {.deceased = u"ハナ"_s, .memorial = booked},
         listed(u"法要一"_s)},
        {u"法要一"_s, u"檀家照会"_s, u"檀家登"_s, modal, keeps, plain, listed(u"法要一"_s)},

        {u"法要個"_s, u"個別照会"_s, u"法要明"_s, modal, refreshes, {.deceased = u"ハナ"_s, .memorial = booked}, ofOne},

        {u"法要檀"_s,
         u"個別照会"_s,
         u"法要明"_s,
         modal,
         refreshes,
         {.deceased = u"ハナ"_s, .memorial = booked},
         ofHousehold},
        {u"法要檀"_s,
         u"故人照会"_s,
         u"過去登"_s,
         modeless,
         keeps,
         {.deceased = u"ハナ"_s, .memorial = booked},
         ofHousehold},

        {u"法要通"_s,
         u"故人照会"_s,
         u"過去登"_s,
         modeless,
         keeps,
         {.deceased = u"ハナ"_s, .memorial = noticed},
         listed(u"法要通"_s)},
        {u"法要通"_s, u"檀家照会"_s, u"檀家登"_s, modeless, keeps, plain, listed(u"法要通"_s)},
    };
    for (const Edge& edge : edges) {
        SCOPED_TRACE((edge.opener + u' ' + edge.button + u' ' + edge.target).toStdString());
        fill();
        try {
            edge.reach();
            press(edge.opener, edge.button);
            ui::Screen& opened = screen(edge.target);
            EXPECT_EQ(opened.windowModality() != Qt::NonModal, edge.how == desk::Opening::modal);
            EXPECT_EQ(handed(), edge.handed);
            const QString before = contents(edge.opener);
            changeAll();
            if (edge.target.startsWith(u'紐'))
                link(edge.target);
            else
                close(edge.target);
            EXPECT_EQ(workplace->find(edge.target), nullptr);
            EXPECT_EQ(contents(edge.opener) != before, edge.after == Return::refreshes);
            allShown();
        } catch (const std::runtime_error& failure) {
            ADD_FAILURE() << failure.what();
        }
    }
}
