#include "households/household_screens.h"
#include "households/kana_list_rules.h"
#include "ui/layout.h"
#include "ui/plain_text.h"
#include "ui/row_table.h"
#include "ui/search_box.h"

#include <QAbstractTableModel>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace households {

namespace {

const std::vector<std::pair<QString, int>>& columns() {
    static const std::vector<std::pair<QString, int>> all{{u"檀家NO"_s, 800},  {u"檀家名"_s, 1400}, {QString(), 1600},
                                                          {u"当主名"_s, 1800}, {u"地区"_s, 1200},   {u"住所"_s, 3000},
                                                          {u"電話"_s, 1600},   {u"備考"_s, 2600}};
    return all;
}

// The data source of one grid: the lines of a saved query, read when the screen opened.
class Lines : public QAbstractTableModel {
  public:
    using QAbstractTableModel::QAbstractTableModel;

    void set(std::vector<KanaLine> read) {
        beginResetModel();
        lines_ = std::move(read);
        endResetModel();
    }
    const KanaLine& line(int row) const { return lines_[static_cast<std::size_t>(row - 1)]; }
    int picked() const { return picked_; }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(lines_.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(columns().size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        const KanaLine& line = lines_[static_cast<std::size_t>(index.row())];
        switch (role) {
        case Qt::DisplayRole:
        case Qt::ToolTipRole: {
            const QString text = index.column() == 0 ? QString::number(line.no1)
                                                     : line.texts[static_cast<std::size_t>(index.column() - 1)];
            return role == Qt::ToolTipRole ? ui::plainToolTip(text) : text;
        }
        case Qt::TextAlignmentRole:
            return QVariant::fromValue((index.column() == 0 ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
        case Qt::BackgroundRole:
            return index.row() + 1 == picked_ ? QColor(128, 255, 128) : QVariant();
        default:
            return {};
        }
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (role == Qt::DisplayRole && orientation == Qt::Horizontal)
            return columns()[static_cast<std::size_t>(section)].first;
        return {};
    }
    void pick(int row) {
        const int before = std::exchange(picked_, row);
        for (const int at : {before, row}) {
            if (at > 0)
                Q_EMIT dataChanged(index(at - 1, 0), index(at - 1, columnCount() - 1), {Qt::BackgroundRole});
        }
    }

  private:
    std::vector<KanaLine> lines_;
    int picked_ = 0;
};

class KanaGrid : public ui::RowTable {
  public:
    explicit KanaGrid(Lines* lines) : lines_(lines) {
        setModel(lines);
        std::vector<int> twips;
        for (const auto& column : columns())
            twips.push_back(column.second);
        setColumnTwips(twips);
    }
    int filledRows() const override { return lines_->rowCount(); }
    int pickedRow() const override { return lines_->picked(); }

  private:
    Lines* lines_;
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
    std::vector<Lines*> sources;
    for (const KanaTab& tab : kanaTabs()) {
        const QString number = QString::number(sources.size() + 1);
        auto* lines = new Lines(raw);
        lines->setObjectName(u"Data"_s + number);
        sources.push_back(lines);
        auto* grid = new KanaGrid(lines);
        grid->setObjectName(u"DBGrid"_s + number);
        grid->setAccessibleName(tab.caption);
        tabs->addTab(grid, tab.caption);
        grid->openRow = [raw, open = opener(u"檀家登"_s)] { raw->operate(open); };
    }
    ui::Layout layout(*screen);
    layout.fill(ui::searchLine(*screen));
    layout.fill(tabs);
    for (int i = 0; i < tabs->count(); ++i) {
        auto* grid = static_cast<KanaGrid*>(tabs->widget(i));
        raw->addToTabOrder(grid);
        grid->clickedAt = [raw, sources, lines = sources[static_cast<std::size_t>(i)], grid](int row, int) {
            raw->operate([&] {
                if (row < 1 || row > lines->rowCount()) {
                    raw->desk().notify(u"選択位置が有効でありません。"_s, raw->title());
                    return;
                }
                for (Lines* other : sources)
                    other->pick(other == lines ? row : 0);
                grid->scrollTo(lines->index(row - 1, 0));
                const KanaLine& line = lines->line(row);
                raw->form().chosenNo = line.no1;
                raw->form().chosenName = line.texts[0];
            });
        };
    }
    layout.mainAction(u"照会"_s, u"檀家照会"_s, opener(u"檀家登"_s))
        .gap()
        .action(u"家族一欄"_s, u"家族一欄"_s, opener(u"家族一"_s))
        .action(u"過去帳"_s, u"過去帳"_s, opener(u"過去一"_s))
        .action(u"法要照会"_s, u"法要記録"_s, opener(u"法要檀"_s))
        .closing();
    screen->onOpen([sources] {
        auto read = readKanaTabs();
        for (std::size_t i = 0; i < sources.size(); ++i)
            sources[i]->set(std::move(read[i]));
    });
    return screen;
}

} // namespace households
