#include "labels/settings_screen.h"

#include "labels/settings_rules.h"
#include "printing/label_painter.h"
#include "ui/layout.h"

#include <QGroupBox>
#include <QKeyEvent>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace labels {

using namespace printing;
namespace {

// The sheet drawn, with its first free label; a click or the arrow keys choose another one.
class SheetPicture : public QWidget {
  public:
    SheetPicture() {
        setFocusPolicy(Qt::StrongFocus);
        setMinimumSize(230, 320);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }

    std::function<void(int label)> chosen;

    void show(const std::optional<LabelStock>& sheet, std::optional<int> start) {
        sheet_ = sheet;
        start_ = start;
        setAccessibleDescription(start ? u"%1番目のラベルから"_s.arg(*start + 1) : u"選ばれていません"_s);
        update();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (!sheet_) {
            painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, u"この寸法のラベルは用紙に入りません"_s);
            return;
        }
        painter.translate(corner());
        const QRectF paper(0, 0, sheet_->paper.width * scale(), sheet_->paper.height * scale());
        painter.fillRect(paper, Qt::white);
        painter.setPen(hasFocus() ? QPen(palette().highlight().color(), 3) : QPen(Qt::gray, 1));
        painter.drawRect(paper);
        paintLabels(painter, *sheet_, scale() * 25.4, start_.value_or(0));
        if (start_) {
            painter.setPen(QPen(palette().highlight().color(), 2));
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(place(*start_));
        }
        painter.setPen(Qt::black);
        for (int label = 0; sheet_->labels() > 1 && label < sheet_->labels(); ++label)
            painter.drawText(place(label), Qt::AlignCenter, QString::number(label + 1));
    }
    void mousePressEvent(QMouseEvent* event) override {
        if (!sheet_ || event->button() != Qt::LeftButton)
            return;
        for (int label = 0; label < sheet_->labels(); ++label) {
            if (place(label).contains(event->position() - corner()))
                choose(label);
        }
    }
    void keyPressEvent(QKeyEvent* event) override {
        const int columns = sheet_ ? sheet_->columns : 1;
        const int last = sheet_ ? sheet_->labels() - 1 : 0;
        const int here = start_.value_or(0);
        switch (event->key()) {
        case Qt::Key_Left:
            return choose(here - 1);
        case Qt::Key_Right:
            return choose(here + 1);
        case Qt::Key_Up:
            return choose(here - columns);
        case Qt::Key_Down:
            return choose(here + columns);
        case Qt::Key_Home:
            return choose(0);
        case Qt::Key_End:
            return choose(last);
        default:
            QWidget::keyPressEvent(event);
        }
    }
    void focusInEvent(QFocusEvent*) override { update(); }
    void focusOutEvent(QFocusEvent*) override { update(); }

  private:
    // Pixels a millimetre.
    double scale() const {
        return std::min((width() - 8) / sheet_->paper.width, (height() - 8) / sheet_->paper.height);
    }
    QPointF corner() const {
        return {(width() - sheet_->paper.width * scale()) / 2, (height() - sheet_->paper.height * scale()) / 2};
    }
    QRectF place(int label) const {
        return {sheet_->labelLeft(label) * scale(), sheet_->labelTop(label) * scale(), sheet_->width * scale(),
                sheet_->height * scale()};
    }
    void choose(int label) {
        if (sheet_ && label >= 0 && label < sheet_->labels() && chosen)
            chosen(label);
    }

    std::optional<LabelStock> sheet_;
    std::optional<int> start_;
};

void addAnniversaries(ui::Layout& layout, ui::Screen& screen, 宛名設定Form& form) {
    auto* list = new QListWidget;
    list->setObjectName(u"回忌選択"_s);
    list->setAccessibleName(u"通知する回忌"_s);
    screen.sized([list] { list->setMinimumHeight(list->fontMetrics().height() * 9); });
    layout.widget(list);
    screen.bind({list, &form.回忌選択,
                 [list, &form] {
                     form.回忌選択.current = list->currentRow();
                     for (int i = 0; i < list->count(); ++i)
                         form.ticked[static_cast<std::size_t>(i)] = list->item(i)->checkState() == Qt::Checked;
                 },
                 [list, &form] {
                     if (list->count() != form.回忌選択.items.size()) {
                         list->clear();
                         list->addItems(form.回忌選択.items);
                         list->setCurrentRow(0);
                     }
                     for (int i = 0; i < list->count(); ++i)
                         list->item(i)->setCheckState(form.ticked[static_cast<std::size_t>(i)] ? Qt::Checked
                                                                                               : Qt::Unchecked);
                     // Fees have none to choose from.
                     for (QWidget* above = list; above; above = above->parentWidget()) {
                         if (qobject_cast<QGroupBox*>(above))
                             above->setVisible(form.memorials);
                     }
                 }});
    screen.addToTabOrder(list);
}

} // namespace

std::unique_ptr<ui::Screen> 宛名設定(ui::Workplace& workplace) {
    auto screen =
        std::make_unique<ui::FormScreen<宛名設定Form>>(workplace, u"宛名設定"_s, u"宛名設定"_s, u"宛名設定"_s);
    auto* raw = screen.get();
    auto& form = screen->form();
    const ui::Operation measure = screen->run(chooseSheet);
    ui::Layout layout(*screen);
    layout.frame(u"回忌枠"_s, u"通知する回忌"_s).row();
    addAnniversaries(layout, *screen, form);
    layout.row()
        .button(u"回忌全選択"_s, u"すべて選択"_s, screen->run(tickAll))
        .button(u"回忌全解除"_s, u"すべて解除"_s, screen->run(tickNone));

    const auto enableOwn = [&](const QString& unit) {
        auto* edit = layout.last();
        screen->bind({edit, nullptr, {}, [edit, &form] { edit->setEnabled(form.用紙.text == ownStockName); }});
        layout.onLeave(measure);
        if (!unit.isEmpty())
            layout.note(unit);
    };
    layout.beside().frame(u"用紙枠"_s, u"用紙"_s).row(u"用紙"_s).choice(HOSHIREN_CONTROL(form, 用紙), 17, measure);
    layout.row(u"列数"_s).number(HOSHIREN_CONTROL(form, 列数), 4);
    enableOwn({});
    layout.row(u"段数"_s).number(HOSHIREN_CONTROL(form, 段数), 4);
    enableOwn({});
    layout.row(u"ラベルの幅"_s).number(HOSHIREN_CONTROL(form, ラベル幅), 4);
    enableOwn(u"mm"_s);
    layout.row(u"ラベルの高さ"_s).number(HOSHIREN_CONTROL(form, ラベル高さ), 4);
    enableOwn(u"mm"_s);
    layout.row(u"左の余白"_s).number(HOSHIREN_CONTROL(form, 左余白), 4);
    enableOwn(u"mm"_s);
    layout.row(u"上の余白"_s).number(HOSHIREN_CONTROL(form, 上余白), 4);
    enableOwn(u"mm"_s);
    layout.row(u"左右の間隔"_s).number(HOSHIREN_CONTROL(form, 左右間隔), 4);
    enableOwn(u"mm"_s);
    layout.row(u"上下の間隔"_s).number(HOSHIREN_CONTROL(form, 上下間隔), 4);
    enableOwn(u"mm"_s);

    auto* picture = new SheetPicture;
    picture->setObjectName(u"開始位置"_s);
    picture->setAccessibleName(u"開始位置"_s);
    layout.beside().frame(u"開始枠"_s, u"最初に使うラベル"_s).row().widget(picture);
    screen->bind({picture, nullptr, {}, [picture, &form] { picture->show(form.sheet, form.start()); }});
    screen->addToTabOrder(picture);
    picture->chosen = [raw, &form](int label) {
        raw->operate([&] {
            form.開始番号.text = QString::number(label + 1);
            form.開始番号.colour = desk::Colour::black;
        });
    };
    layout.row(u"開始位置"_s).number(HOSHIREN_CONTROL(form, 開始番号), 4).onLeave(measure).note(u"番目のラベルから"_s);

    layout.mainAction(u"設定"_s, u"設定"_s, screen->run(takeSettings)).closing().finish();
    screen->onOpen(screen->run(beginSettings));
    return screen;
}

} // namespace labels
