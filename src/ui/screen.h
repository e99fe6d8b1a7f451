#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/screen_context.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class QScrollArea;

namespace ui {

class Workplace;

using Operation = std::function<void()>;

// Which parts of the hand-off record a screen keeps for itself and puts back before each of its operations, so that a
// screen left open never works on another screen's record.
struct Keeps {
    bool household = false;
    bool deceased = false;
    bool memorial = false;
    bool member = false;
    bool grave = false;
};

// Name of a control and its value, from one word.
#define HOSHIREN_CONTROL(form, name) u"" #name ""_s, (form).name

// A top-level window that binds a form. Its objectName is the screen's name. Every button, list or grid event runs as
// an operation: widgets into form, rule, form into widgets; what fails is told under the screen's title.
class Screen : public QWidget {
  public:
    Screen(Workplace& workplace, const QString& name, const QString& caption, const QString& title, Keeps keeps = {});
    ~Screen() override;

    const QString& title() const { return title_; }
    desk::Desk& desk();
    desk::ScreenContext& context();
    Workplace& workplace() { return workplace_; }

    // Runs an operation. During one, further events of the screen are left out and it refuses to close.
    void operate(const Operation& operation);
    bool operating() const { return busy_; }
    // The operation that runs when the screen opens.
    void onOpen(Operation operation) { load_ = std::move(operation); }
    void open();

    // Binding of one control: into the form and back.
    struct Binding {
        QWidget* widget = nullptr;
        desk::Control* control = nullptr; // null for what has neither mark nor tab place
        std::function<void()> intoForm;
        std::function<void()> intoWidget;
    };
    void bind(Binding binding);
    // Adds a widget to the end of the tab order.
    void addToTabOrder(QWidget* widget);
    // Runs when the keyboard leaves the control for another control of this screen, the closing button apart.
    void onLeave(QWidget* widget, Operation operation);
    // Runs on Enter in the control, which then does not move on to the next one.
    void onEnter(QWidget* widget, Operation operation);

    const std::vector<Binding>& bindings() const { return bindings_; }
    const std::vector<QWidget*>& tabOrder() const { return tabOrder_; }
    void showForm();
    void readForm();

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    class ScreenDesk;
    friend class ScreenDesk;
    friend class Layout;

    void applyTabOrder();
    void putBackKept();
    void takeKept();
    void focusMoved(QWidget* from, QWidget* to);

    Workplace& workplace_;
    QString title_;
    Keeps keeps_;
    desk::ScreenContext kept_;
    bool keeping_ = false;
    std::unique_ptr<ScreenDesk> desk_;
    Operation load_;
    Operation fit_; // gives the window its first size
    std::vector<Binding> bindings_;
    std::vector<QWidget*> tabOrder_;
    std::vector<std::pair<QPointer<QWidget>, Operation>> leaving_;
    std::vector<std::pair<const QObject*, Operation>> entered_;
    bool busy_ = false;
    bool closing_ = false;
    bool handedOver_ = false;
};

// A screen with its form.
template <class Form> class FormScreen : public Screen {
  public:
    using Screen::Screen;
    Form& form() { return form_; }

    // The operation that runs a rule of this form.
    Operation run(void (*rule)(Form&, desk::ScreenContext&, desk::Desk&)) {
        return [this, rule] { rule(form_, context(), desk()); };
    }

  private:
    Form form_;
};

} // namespace ui
