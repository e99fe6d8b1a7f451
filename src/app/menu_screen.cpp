#include "app/menu_screen.h"

#include "calendar/eras.h"
#include "store/database.h"
#include "ui/key_button.h"
#include "ui/layout.h"
#include "ui/plain_text.h"
#include "ui/search_box.h"
#include "values/dates.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace app {

namespace {

struct MenuButton {
    QString name;
    QString caption;
    QString screen;
};

struct MenuFrame {
    QString name;
    QString title;
    std::vector<MenuButton> buttons;
};

const std::vector<MenuFrame>& frames() {
    static const std::vector<MenuFrame> all{
        {u"Frame1"_s,
         u"檀家さん"_s,
         {{u"檀家登録"_s, u"照会･登録"_s, u"檀家登"_s},
          {u"一覧表示"_s, u"一覧表示"_s, u"檀家一覧"_s},
          {u"檀家一括登録"_s, u"檀家一括登録"_s, u"檀家一括"_s},
          {u"檀家一括出力"_s, u"檀家一括出力"_s, u"檀家出力"_s}}},
        {u"Frame3"_s,
         u"お墓"_s,
         {{u"お墓登録"_s, u"区画･登録"_s, u"お墓新"_s},
          {u"お墓一覧"_s, u"一覧表示"_s, u"お墓一"_s},
          {u"管理費"_s, u"管理費通知"_s, u"お墓通"_s},
          {u"お墓一括登録"_s, u"お墓一括登録"_s, u"お墓一括"_s},
          {u"お墓一括出力"_s, u"お墓一括出力"_s, u"お墓出力"_s}}},
        {u"Frame2"_s,
         u"法要"_s,
         {{u"法要予定"_s, u"予約一覧"_s, u"法要一"_s}, {u"法要通知"_s, u"法要通知"_s, u"法要通"_s}}},
        {u"Frame4"_s,
         u"その他"_s,
         {{u"帳票"_s, u"帳票"_s, u"帳票"_s},
          {u"年号登録"_s, u"年号登録"_s, u"年号登"_s},
          {u"マスター登録"_s, u"マスター登録"_s, u"マスター登"_s},
          {u"控え"_s, u"控え"_s, u"控え"_s},
          {u"設定"_s, u"設定"_s, u"設定"_s}}}};
    return all;
}

// The day in era form; in Western form where the register cannot tell the era.
QString dayText(QDate day) {
    try {
        store::Database database;
        if (const auto era = calendar::eraDate(database, day); era && !era->full.isEmpty())
            return era->full;
    } catch (const std::exception&) {
        // Every button tells of a register that cannot be read.
    }
    return values::dateText(day);
}

// Which inputs were left unsaved; empty where there is none.
QString draftsText(const ui::Drafts& drafts) {
    QStringList names;
    for (const ui::Draft& draft : drafts.all())
        names << draft.caption + u' ' + draft.label;
    return names.isEmpty() ? QString() : u"保存していない入力があります："_s + names.join(u"、"_s);
}

// Large where there is room for it.
class MenuButtonWidget : public ui::KeyButton {
  public:
    MenuButtonWidget(const QString& name, const QString& caption) : KeyButton(caption) {
        setObjectName(name);
        setAutoDefault(false);
        setMinimumHeight(38);
        setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred);
    }
    QSize sizeHint() const override { return KeyButton::sizeHint().expandedTo({210, 48}); }
    QSize minimumSizeHint() const override { return KeyButton::sizeHint().expandedTo({150, 38}); }
};

// The groups of buttons: four across with one button in a line, and where the window does not hold them, two across.
class Groups : public QWidget {
  public:
    explicit Groups(ui::Screen& menu) : grid_(new Grid(*this)) {
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        grid_->setContentsMargins(0, 0, 0, 0);
        grid_->setHorizontalSpacing(12);
        // No bold face: it would be one more large font to read at the start.
        for (const MenuFrame& frame : frames()) {
            auto* box = new QGroupBox(frame.title);
            box->setObjectName(frame.name);
            menu.scaleText(box, 1.1);
            Group group{box, new QGridLayout(box), {}};
            for (const MenuButton& button : frame.buttons) {
                auto* widget = new MenuButtonWidget(button.name, button.caption);
                menu.scaleText(widget, 1.15);
                QObject::connect(widget, &QPushButton::clicked, &menu, [&menu, target = button.screen] {
                    menu.operate([&menu, target] { menu.desk().open(target); });
                });
                menu.addToTabOrder(widget);
                menu.addKeyButton(widget);
                group.buttons.push_back(widget);
            }
            groups_.push_back(std::move(group));
        }
        arrange(shapes.front());
        menu.sized([this] {
            if (isVisible())
                arrange(fitting());
        });
    }

    QSize sizeHint() const override { return sizeOf(shapes.front(), &QWidget::sizeHint); }
    // The narrowest shape is not the lowest one.
    QSize minimumSizeHint() const override {
        QSize least = sizeHint();
        for (const Shape& shape : shapes)
            least = least.boundedTo(sizeOf(shape, &QWidget::minimumSizeHint));
        return least;
    }

  protected:
    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        arrange(fitting());
    }

  private:
    struct Shape {
        int groups;  // across
        int buttons; // in a line of a group
        bool operator==(const Shape&) const = default;
    };
    static constexpr std::array<Shape, 3> shapes{{{4, 1}, {2, 1}, {2, 2}}};

    struct Group {
        QGroupBox* box;
        QGridLayout* grid;
        std::vector<QPushButton*> buttons;
    };

    // Knows how high the shape is that a width holds.
    class Grid : public QGridLayout {
      public:
        explicit Grid(Groups& groups) : QGridLayout(&groups), groups_(groups) {}
        bool hasHeightForWidth() const override { return true; }
        int heightForWidth(int width) const override {
            if (width >= groups_.sizeHint().width())
                return groups_.sizeHint().height();
            const auto holds = [&](const Shape& shape) {
                return groups_.sizeOf(shape, &QWidget::minimumSizeHint).width() <= width;
            };
            const auto* shape = std::ranges::find_if(shapes, holds);
            return groups_.sizeOf(shape == shapes.end() ? shapes.back() : *shape, &QWidget::minimumSizeHint).height();
        }

      private:
        const Groups& groups_;
    };

    static int lines(const Group& group, const Shape& shape) {
        return (static_cast<int>(group.buttons.size()) + shape.buttons - 1) / shape.buttons;
    }

    QSize sizeOf(const Shape& shape, QSize (QWidget::*of)() const) const {
        QSize button;
        for (const Group& group : groups_)
            for (const QPushButton* one : group.buttons)
                button = button.expandedTo((one->*of)());
        const QMargins inside = groups_.front().grid->contentsMargins();
        const QMargins outside = groups_.front().box->contentsMargins();
        const int space = groups_.front().grid->verticalSpacing();
        const int across = shape.buttons * (button.width() + space) - space + inside.left() + inside.right() +
                           outside.left() + outside.right();
        int high = -grid_->verticalSpacing();
        for (std::size_t first = 0; first < groups_.size(); first += static_cast<std::size_t>(shape.groups)) {
            int most = 0;
            for (std::size_t at = first; at < std::min(first + static_cast<std::size_t>(shape.groups), groups_.size());
                 ++at)
                most = std::max(most, lines(groups_[at], shape));
            high += most * (button.height() + space) - space + inside.top() + inside.bottom() + outside.top() +
                    outside.bottom() + grid_->verticalSpacing();
        }
        return {shape.groups * (across + grid_->horizontalSpacing()) - grid_->horizontalSpacing(), high};
    }

    const Shape& fitting() const {
        const auto fits = [this](const Shape& shape) {
            const QSize least = sizeOf(shape, &QWidget::minimumSizeHint);
            return least.width() <= width() && least.height() <= height();
        };
        const auto* shape = std::ranges::find_if(shapes, fits);
        return shape == shapes.end() ? shapes.back() : *shape;
    }

    void arrange(const Shape& shape) {
        if (shape == shape_)
            return;
        shape_ = shape;
        for (int at = 0; at < static_cast<int>(groups_.size()); ++at) {
            const Group& group = groups_[static_cast<std::size_t>(at)];
            grid_->addWidget(group.box, at / shape.groups, at % shape.groups);
            for (int row = 0; row < group.grid->rowCount(); ++row)
                group.grid->setRowStretch(row, 0);
            for (int button = 0; button < static_cast<int>(group.buttons.size()); ++button)
                group.grid->addWidget(group.buttons[static_cast<std::size_t>(button)], button / shape.buttons,
                                      button % shape.buttons);
            group.grid->setRowStretch(lines(group, shape), 1);
        }
    }

    Grid* grid_;
    std::vector<Group> groups_;
    Shape shape_{0, 0};
};

} // namespace

std::unique_ptr<ui::Screen> メニュー(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::Screen>(workplace, u"メニュー"_s, u"メニュー"_s, u"メニュー"_s);
    ui::Screen* menu = screen.get();
    auto* content = new QWidget;
    auto* whole = new QVBoxLayout(content);
    whole->setContentsMargins(10, 6, 10, 0);
    whole->setSpacing(8);

    auto* head = new QHBoxLayout;
    auto* name = ui::plainLabel(QFileInfo(store::Database::registerPath()).completeBaseName());
    menu->scaleText(name, 1.6);
    auto* today = ui::plainLabel(dayText(workplace.today()));
    today->setObjectName(u"今日"_s);
    menu->scaleText(today, 1.2);
    head->addWidget(name);
    head->addStretch(1);
    head->addWidget(today);
    whole->addLayout(head);
    auto* path = ui::plainLabel(QDir::toNativeSeparators(store::Database::registerPath()));
    path->setObjectName(u"登録簿"_s);
    path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    path->setWordWrap(true);
    whole->addWidget(path);
    whole->addWidget(ui::searchLine(*menu));
    whole->addWidget(new Groups(*menu), 1);

    ui::Layout layout(*menu);
    layout.fill(content).closing();
    menu->scaleText(layout.last(), 1.15);
    menu->sized([button = layout.last()] { button->setMinimumSize(150, 42); });
    layout.finish();

    menu->asksForNoRecord();
    menu->onIdleBar([&workplace] { return draftsText(workplace.drafts); }, [&workplace] { workplace.showDraft(); });
    menu->onOpen([menu] {
        menu->context().G初期値();
        menu->context().dnk_no1 = 0;
    });
    return screen;
}

} // namespace app
