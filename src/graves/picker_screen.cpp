#include "graves/grave_screens.h"

#include "graves/picker_rules.h"
#include "ui/list_view.h"

using namespace Qt::StringLiterals;

namespace graves {

namespace {

// However the window is closed, only 紐付け hands a grave back.
template <class Form> class PickerScreen : public ui::FormScreen<Form> {
  public:
    using ui::FormScreen<Form>::FormScreen;

  protected:
    void closeEvent(QCloseEvent* event) override {
        leavePicker(this->form(), this->context());
        ui::FormScreen<Form>::closeEvent(event);
    }
};

template <class Form> void addPage(ui::Layout& layout, PickerScreen<Form>& screen) {
    auto& form = screen.form();
    const ui::Operation take = [&screen] { takeGrave(screen.form(), screen.desk()); };
    ui::addList(layout, screen, form, take);
    layout.mainAction(u"紐付け"_s, u"紐付け"_s, take).gap();
    ui::addListButtons(layout, screen, form);
    layout.closing().finish();
    screen.onOpen(screen.run(beginPicker));
}

} // namespace

std::unique_ptr<ui::Screen> 紐区画(ui::Workplace& workplace) {
    auto screen =
        std::make_unique<PickerScreen<紐区画Form>>(workplace, u"紐区画"_s, u"お墓紐付区画"_s, u"お墓紐付･区画"_s);
    auto& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame()
        .row(u"お墓の位置(区画）"_s, u"Label1"_s)
        .combo(HOSHIREN_CONTROL(form, frm21_block), 10, screen->run(chooseSection));
    addPage(layout, *screen);
    return screen;
}

std::unique_ptr<ui::Screen> 紐墓標(ui::Workplace& workplace) {
    auto screen =
        std::make_unique<PickerScreen<紐墓標Form>>(workplace, u"紐墓標"_s, u"お墓紐付墓標"_s, u"お墓紐付･墓標"_s);
    ui::Layout layout(*screen);
    addPage(layout, *screen);
    return screen;
}

} // namespace graves
