#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/paging_list.h"
#include "desk/screen_context.h"

#include <algorithm>
#include <exception>
#include <optional>

namespace desk {

// "30–59／268件"; without what is not known yet (first 0, no total).
QString listPlace(int first, int last, std::optional<int> total);
// What stands behind it when a page key or button leads no further.
QString noRowsText(bool forward);

// What the form of every list screen has and does, whatever it lists; ui/list_view.h binds it to the screen.
struct AnyList {
    Grid frm21_tbl;
    Text 件数表示; // place and total of the page shown, "1–30／268件"; empty before the first 表示
    Text 合計表示; // what the list comes to, where it sums up

    virtual ~AnyList() = default;

    virtual void nextPage(Desk& desk) = 0;
    virtual void previousPage(Desk& desk) = 0;
    // The same for wheel and key: they stop at both ends of the list, where the row chosen stays marked, and find back
    // from any page.
    virtual void scrollOn(Desk& desk) { nextPage(desk); }
    virtual void scrollBack(Desk& desk) { previousPage(desk); }
    // The user clicked into the grid.
    virtual void click(ScreenContext& context, Desk& desk) = 0;

    // Whether the total stands in 件数表示. A page is shown before it is counted, and counted once a 表示.
    virtual bool isCounted() const = 0;
    // Counts the list; a register that cannot be read now is told in 件数表示 itself.
    virtual void count() = 0;

    // The cells of all rows of the list from its start on, not of one page, under the columns of the grid. A message
    // that concerns several rows is told once.
    virtual std::vector<QStringList> allRows(Desk& desk) const = 0;
    // Whether the list tells in 合計表示 what it comes to.
    virtual bool sumsUp() const { return false; }
    // What is listed, as its printed form tells it: a household, a section, a range of days.
    virtual QString range() const { return {}; }
    // The same with what the list comes to, where that belongs above its printed form.
    virtual QString printedRange() const { return range(); }

  protected:
    AnyList() = default;
    AnyList(const AnyList&) = default;
    AnyList& operator=(const AnyList&) = default;
};

// How a list of one household is headed on paper: 山田（3）.
inline QString householdRange(const QString& name, int number) {
    return name + QStringLiteral("（%1）").arg(number);
}

// Shows each message only once and passes everything else on to the other desk.
class TellingOnce : public Desk {
  public:
    explicit TellingOnce(Desk& desk) : desk_(desk) {}
    void notify(const QString& text, const QString& title, Icon icon) override {
        if (!told_.contains(text))
            desk_.notify(text, title, icon);
        told_ << text;
    }
    bool ask(const QString& text, const QString& title, Preset preset) override {
        return desk_.ask(text, title, preset);
    }
    void inform(const QString& text) override { desk_.inform(text); }
    QDate today() const override { return desk_.today(); }
    void open(const QString& screen, Opening how, std::function<void()> closed) override {
        desk_.open(screen, how, std::move(closed));
    }
    void close() override { desk_.close(); }
    std::unique_ptr<Progress> progress(const QString& title) override { return desk_.progress(title); }

  private:
    Desk& desk_;
    QStringList told_;
};

// The form of a list that stands in the grid as a whole, without pages.
struct WholeList : AnyList {
    void nextPage(Desk&) override { tell(noRowsText(true)); }
    void previousPage(Desk&) override { tell(noRowsText(false)); }
    bool isCounted() const override { return true; }
    void count() override { tell(); }
    std::vector<QStringList> allRows(Desk&) const override { return frm21_tbl.rows; }

  private:
    void tell(const QString& remark = {}) {
        const auto rows = static_cast<int>(frm21_tbl.rows.size());
        件数表示.text = listPlace(1, rows, rows) + remark;
    }
};

// The form of a list shown thirty rows a page: its description, where it begins, and `read`, which gives its rows.
template <class Row, class Key> struct ListForm : AnyList {
    using Take = typename PagingList<Row, Key>::Take;

    PagingList<Row, Key> list;

    ListForm(ListDescription<Row, Key> description, Key start) : list(std::move(description), std::move(start)) {
        list.setUp(frm21_tbl);
    }

    // 表示: the list from its start on. Says so, and leaves everything as it was, when there is nothing to list.
    void showFirstPage(Desk& desk) {
        if (list.showFirstPage(source(), frm21_tbl, desk))
            countAnew();
    }
    // The page shown is read again, as it stands in the file now.
    void refill(Desk& desk) {
        if (list.fill(source(), frm21_tbl, desk))
            countAnew();
    }
    // Goes on after rows have left the list: from the key, else from the list's start. An empty list is shown as one.
    void showFrom(const Key& key, Desk& desk) {
        list.fillFromKey(key, source(), frm21_tbl, desk);
        countAnew();
    }
    // The page shown, read anew where its rows may have left the list: from its first row that is still there.
    void showPageAnew(Desk& desk) {
        const auto stays = std::ranges::find_if(list.rows(), [this](const Row& row) {
            bool found = false;
            read(list.key(row), [&](const Row& first) {
                found = list.key(first) == list.key(row);
                return false;
            });
            return found;
        });
        showFrom(stays == list.rows().end() ? list.start() : list.key(*stays), desk);
    }
    void nextPage(Desk& desk) override {
        const std::optional<Key> before = firstKey();
        const bool found = list.nextPage(source(), frm21_tbl, desk);
        turned(before, !found           ? QString()
                       : list.isAtEnd() ? noRowsText(true)
                                        : QStringLiteral("　並び順の同じ行が続くため、これより後は表示できません。"));
    }
    void previousPage(Desk& desk) override {
        const std::optional<Key> before = firstKey();
        list.previousPage(source(), frm21_tbl, desk);
        turned(before, noRowsText(false));
    }
    void scrollOn(Desk& desk) override {
        if (list.rowCounter() > pageRows)
            nextPage(desk);
        else
            tell(noRowsText(true));
    }
    void scrollBack(Desk& desk) override {
        if (list.firstNumber() == 1) {
            tell(noRowsText(false));
            return;
        }
        const std::optional<Key> before = firstKey();
        list.pageBefore(source(), frm21_tbl, desk);
        turned(before, noRowsText(false));
    }
    void click(ScreenContext& context, Desk& desk) override {
        if (const Row* row = list.click(frm21_tbl, desk)) {
            chosen(*row, context);
            list.turnTick(frm21_tbl, desk);
        }
    }
    // Opens a screen for the row chosen; the list goes on when it has closed.
    void open(const QString& screen, Desk& desk) {
        desk.open(screen, Opening::modal, [this, &desk] { goOn(desk); });
    }

    // A screen that was opened for a row has closed.
    virtual void goOn(Desk& desk) { showFirstPage(desk); }

    bool isCounted() const override { return counted_; }
    void count() override {
        counted_ = true;
        try {
            if (!total_)
                total_ = total();
            if (list.firstNumber() == 0)
                list.findFirstNumber(source());
            tell();
        } catch (const std::exception&) {
            tell();
            件数表示.text += QStringLiteral("（件数を読めませんでした）");
        }
    }

    std::vector<QStringList> allRows(Desk& desk) const override {
        TellingOnce once(desk);
        std::vector<QStringList> rows;
        for (const Row& row : list.allRows(source(), once))
            rows.push_back(list.cells(row));
        return rows;
    }

  protected:
    // The source: hands over the records from the first at or after the key on, until refused or at the end. Returns
    // false when there is no such record. Whatever it opens it releases before it returns.
    virtual bool read(const Key& from, const Take& take) const = 0;
    // Rows of the whole list. A list that may be long asks an index instead of reading them.
    virtual int total() const { return list.count(source()); }
    // What a click hands to other screens.
    virtual void chosen(const Row&, ScreenContext&) {}
    // The page shown may belong to another list now: what is known of the whole list holds no more.
    virtual void countAnew() {
        total_.reset();
        if (list.rowCounter() <= pageRows && list.firstNumber() == 1)
            total_ = list.rowsShown();
        counted_ = total_.has_value();
        countedRange_ = range();
        tell();
    }

  private:
    typename PagingList<Row, Key>::Source source() const {
        return [this](const Key& from, const Take& take) { return read(from, take); };
    }
    std::optional<Key> firstKey() const {
        return list.rows().empty() ? std::nullopt : std::optional(list.key(list.rows().front()));
    }

    // stays: what to say when the page is still the same.
    void turned(const std::optional<Key>& before, const QString& stays) {
        // The register may have changed since it was counted.
        const int last = list.firstNumber() + list.rowsShown() - 1;
        const bool agrees = total_ && list.firstNumber() && (list.isAtEnd() ? last == *total_ : last <= *total_);
        if ((!agrees || countedRange_ != range()) && !list.rows().empty())
            countAnew();
        tell(before && before == firstKey() ? stays : QString());
    }

    void tell(const QString& remark = {}) {
        const int first = list.firstNumber();
        件数表示.text = listPlace(first, first + list.rowsShown() - 1, total_) + remark;
    }

    std::optional<int> total_;
    QString countedRange_;
    bool counted_ = true;
};

} // namespace desk
