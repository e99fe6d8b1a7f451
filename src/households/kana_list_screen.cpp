#include "desk/list_form.h"
#include "households/household_screens.h"
#include "households/kana_list_rules.h"
#include "ui/layout.h"
#include "ui/plain_text.h"
#include "ui/printed_list.h"
#include "ui/row_table.h"
#include "ui/search_box.h"

#include <QLabel>
#include <QScrollBar>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace households {

namespace {

// One tab: the lines of a saved query, read when the screen opened.
class KanaGrid : public ui::RowTable {
  public:
    KanaGrid(const 檀家一覧Form& form, std::size_t tab) : form_(form), tab_(tab) {
        setColumns(desk::gridColumns(kanaColumns()));
    }

    void show() {
        const int former = std::exchange(picked_, form_.chosenTab == tab_ ? form_.chosenRow : 0);
        if (lines() != model()->rowCount())
            showRows();
        else if (former != picked_)
            showPicked(former);
    }
    int filledRows() const override { return lines(); }
    int pickedRow() const override { return picked_; }
    QString cell(int row, int column) const override {
        return kanaColumns()[static_cast<std::size_t>(column)].cell(
            form_.tabs[tab_][static_cast<std::size_t>(row - 1)]);
    }

  private:
    int lines() const { return static_cast<int>(form_.tabs[tab_].size()); }

    const 檀家一覧Form& form_;
    std::size_t tab_;
    int picked_ = 0;
};

} // namespace

std::unique_ptr<ui::Screen> 檀家一覧(ui::Workplace& workplace) {
    auto screen =
        std::make_unique<ui::FormScreen<檀家一覧Form>>(workplace, u"檀家一覧"_s, u"檀家一覧"_s, u"檀家一覧"_s);
    auto* raw = screen.get();
    const auto opener = [raw](const QString& target) {
        return [raw, target] { openChosen(raw->form(), raw->context(), raw->desk(), target); };
    };

    auto* tabs = new QTabWidget;
    tabs->setObjectName(u"SSTab1"_s);
    for (QWidget* part : {static_cast<QWidget*>(tabs), static_cast<QWidget*>(tabs->tabBar())})
        part->setAccessibleName(u"カナの行"_s);
    auto* place = ui::plainLabel();
    place->setObjectName(u"件数表示"_s);
    const auto tellPlace = [tabs, place](const QString& remark = {}) {
        const auto* grid = static_cast<const KanaGrid*>(tabs->currentWidget());
        const auto [first, last] = grid->rowsInSight();
        place->setText(desk::listPlace(first, last, grid->filledRows()) + remark);
    };
    std::vector<KanaGrid*> grids;
    for (std::size_t tab = 0; tab < kanaTabs().size(); ++tab) {
        const QString number = QString::number(tab + 1);
        auto* grid = new KanaGrid(raw->form(), tab);
        grid->setObjectName(u"DBGrid"_s + number);
        grid->model()->setObjectName(u"Data"_s + number);
        grid->setAccessibleName(kanaTabs()[tab].caption);
        grid->clickedAt = [raw, tab](int row, int) {
            raw->operate([&] { chooseHousehold(raw->form(), tab, row, raw->desk()); });
        };
        grid->openRow = [raw, open = opener(u"檀家登"_s)] { raw->operate(open); };
        grid->turnPage = [tellPlace](bool forward) { tellPlace(desk::noRowsText(forward)); };
        QObject::connect(grid->verticalScrollBar(), &QScrollBar::valueChanged, place, [tellPlace] { tellPlace(); });
        QObject::connect(grid->verticalScrollBar(), &QScrollBar::rangeChanged, place, [tellPlace] { tellPlace(); });
        tabs->addTab(grid, kanaTabs()[tab].caption);
        grids.push_back(grid);
    }
    QObject::connect(tabs, &QTabWidget::currentChanged, place, [tellPlace] { tellPlace(); });
    auto* whole = new QWidget;
    auto* column = new QVBoxLayout(whole);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(ui::searchLine(*screen));
    column->addWidget(tabs, 1);
    column->addWidget(place);
    ui::Layout layout(*screen);
    layout.fill(whole);
    for (KanaGrid* grid : grids) {
        raw->addToTabOrder(grid);
        raw->keepsColumns(*grid, u"DBGrid"_s);
        raw->bind({grid, nullptr, {}, [grid] { grid->show(); }});
    }
    layout.mainAction(u"照会"_s, u"檀家照会"_s, opener(u"檀家登"_s))
        .gap()
        .action(u"家族一欄"_s, u"家族一欄"_s, opener(u"家族一"_s))
        .action(u"過去帳"_s, u"過去帳"_s, opener(u"過去一"_s))
        .action(u"法要照会"_s, u"法要記録"_s, opener(u"法要檀"_s))
        .gap()
        .action(u"印刷"_s, u"印刷"_s,
                [raw] { ui::previewListing(*raw, kanaListing(raw->form(), raw->desk().today())); })
        .closing()
        .finish();
    // The keyboard starts at the tabs; F3 leads to the search.
    tabs->setFocus();
    screen->onOpen(screen->run(beginKanaList));
    return screen;
}

} // namespace households
