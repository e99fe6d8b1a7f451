#include "app/menu_screen.h"

#include "calendar/eras.h"
#include "store/database.h"
#include "ui/notice_bar.h"
#include "ui/plain_text.h"
#include "values/dates.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

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
         {{u"年号登録"_s, u"年号登録"_s, u"年号登"_s},
          {u"マスター登録"_s, u"マスター登録"_s, u"マスター登"_s},
          {u"控え"_s, u"控え"_s, u"控え"_s}}}};
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

// No bold face: it would be one more large font to read at the start.
QFont scaled(const QWidget& widget, double factor) {
    QFont font = widget.font();
    font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

QPushButton* menuButton(ui::Screen& screen, const QString& name, const QString& caption, ui::Operation operation) {
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    button->setFont(scaled(screen, 1.15));
    button->setMinimumSize(210, 48);
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, &screen,
                     [&screen, operation = std::move(operation)] { screen.operate(operation); });
    screen.addToTabOrder(button);
    return button;
}

} // namespace

std::unique_ptr<ui::Screen> メニュー(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::Screen>(workplace, u"メニュー"_s, u"メニュー"_s, u"メニュー"_s);
    ui::Screen* menu = screen.get();
    auto* frame = new QVBoxLayout(menu);
    frame->setContentsMargins(0, 0, 0, 0);
    frame->addWidget(menu->bar());
    auto* whole = new QVBoxLayout;
    frame->addLayout(whole, 1);
    whole->setContentsMargins(20, 14, 20, 16);
    whole->setSpacing(10);

    auto* head = new QHBoxLayout;
    auto* name = ui::plainLabel(QFileInfo(store::Database::registerPath()).completeBaseName());
    name->setFont(scaled(*menu, 1.6));
    auto* today = ui::plainLabel(dayText(workplace.today()));
    today->setObjectName(u"今日"_s);
    today->setFont(scaled(*menu, 1.2));
    head->addWidget(name);
    head->addStretch(1);
    head->addWidget(today);
    whole->addLayout(head);
    auto* path = ui::plainLabel(QDir::toNativeSeparators(store::Database::registerPath()));
    path->setObjectName(u"登録簿"_s);
    path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    path->setWordWrap(true);
    whole->addWidget(path);

    auto* groups = new QHBoxLayout;
    groups->setSpacing(12);
    for (const MenuFrame& frame : frames()) {
        auto* box = new QGroupBox(frame.title);
        box->setObjectName(frame.name);
        box->setFont(scaled(*menu, 1.1));
        auto* buttons = new QVBoxLayout(box);
        for (const MenuButton& button : frame.buttons)
            buttons->addWidget(menuButton(*menu, button.name, button.caption,
                                          [menu, target = button.screen] { menu->desk().open(target); }));
        buttons->addStretch(1);
        groups->addWidget(box);
    }
    whole->addLayout(groups, 1);

    auto* foot = new QHBoxLayout;
    foot->addStretch(1);
    foot->addWidget(menuButton(*menu, u"終了"_s, u"終了"_s, [menu] { menu->desk().close(); }));
    whole->addLayout(foot);

    menu->asksForNoRecord();
    menu->onIdleBar([&workplace] { return draftsText(workplace.drafts); }, [&workplace] { workplace.showDraft(); });
    menu->onOpen([menu] {
        menu->context().G初期値();
        menu->context().dnk_no1 = 0;
    });
    return screen;
}

} // namespace app
