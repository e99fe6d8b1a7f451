#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/held.h"
#include "desk/screen_context.h"
#include "ui/drafts.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

class QPushButton;
class QScrollArea;

namespace ui {

class KeyButton;
class NoticeBar;
class RowTable;
class SearchBox;
class WindowKeeper;
class Workplace;
struct BoxPlace;
enum class NoticeAction;

using Operation = std::function<void()>;

// Which parts of the hand-off record a screen keeps for itself and puts back before each of its operations, so that a
// screen left open never works on another screen's record.
struct Keeps {
    bool household = false;
    bool deceased = false;
    bool memorial = false;
    bool grave = false;
};

// What the kit has to know of a screen that shows one record, or the records of one household.
struct Subject {
    // The record shown; absent on lists.
    std::function<desk::Record&()> record = {};
    // Puts what the screen shows into the context before each of its operations.
    std::function<void(desk::ScreenContext&)> publish = {};
    // Names the record shown in the context so that load shows it again; where absent, publish does.
    std::function<void(desk::ScreenContext&)> name = {};
    // What an opening with this context asks for; nothing where it asks for no record in particular.
    std::function<std::optional<desk::AskedRecord>(const desk::ScreenContext&)> asked = {};
    // Shows, on an emptied form, the record that the context names.
    Operation load = {};
    // The same for the record that the boxes of its number or name give; such a screen has no load.
    Operation lookUp = {};
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
    // The box on this screen in which everything is searched; null where it has none.
    void searchedBy(SearchBox* box) { searchBox_ = box; }
    SearchBox* searchBox() const { return searchBox_; }
    // Runs an operation. During one, further events of the screen are left out and it refuses to close.
    // False when it failed, which was told, or was left out.
    bool operate(const Operation& operation);
    bool operating() const { return busy_; }
    // What changes in the widgets now is what the form holds.
    bool filling() const { return filling_; }
    // The operation that runs when the screen opens.
    void onOpen(Operation operation) { load_ = std::move(operation); }
    // Declares what the screen shows; the bar, drafts and the accent of the main buttons follow from it.
    void shows(Subject subject) { subject_ = std::move(subject); }
    // The bar of this screen says this where it has nothing of its own to say; pressed runs on its 表示する.
    void onIdleBar(std::function<QString()> text, std::function<void()> pressed);
    // Opening others from here brings them forward and asks for no record (the menu).
    void asksForNoRecord() { asks_ = false; }
    bool asksForRecords() const { return asks_; }
    // A part of an operation whose openings do ask for one.
    void askForRecord(const Operation& part);

    // Runs the opening operation.
    void open();
    // Shows, just made or not, what the draft was typed for.
    void showFor(const Draft& draft);
    void forget(const desk::ScreenContext& deleted) { kept_.forgetAlso(deleted); }
    // The screen was open already when it was asked for the record that the context names.
    void askedAgain(const desk::ScreenContext& context);
    // Says in the bar what needs no answer.
    void say(const QString& text);
    // The bar offers something, or an operation may have it tell something.
    bool tellsMore() const { return busy_ || !offers_.empty(); }
    // Looks what the bar has to say now.
    void refreshBar();
    NoticeBar* bar() { return bar_; }

    // Binding of one control: into the form and back.
    struct Binding {
        QWidget* widget = nullptr;
        desk::Control* control = nullptr; // null for what has neither mark nor tab place
        std::function<void()> intoForm;
        std::function<void()> intoWidget;
        // The form's value as text, and back; absent for what nobody types (lists, grids, what only shows).
        std::function<QString()> typed = {};
        std::function<void(const QString&)> type = {};
        bool namesRecord = false; // a number or name that the record is found by
        bool numeric = false;     // "5,000" and "5000" are the same; empty is 0
        bool restored = false;    // holds what a draft brought back
    };
    void bind(Binding binding);
    Binding& lastBinding() { return bindings_.back(); }
    // Adds a widget to the end of the tab order.
    void addToTabOrder(QWidget* widget);
    // Runs when the keyboard leaves the control for another control of this screen, the closing button apart.
    void onLeave(QWidget* widget, Operation operation);
    // Runs on the form that each operation finds, before it.
    void beforeOperations(std::function<void()> prepare) { prepare_.push_back(std::move(prepare)); }
    // Buttons that are pressed with keys as well, in screen order; giveKeys() gives each its own once all are known.
    void addKeyButton(KeyButton* button) { keyButtons_.push_back(button); }
    void giveKeys();
    const std::vector<KeyButton*>& keyButtons() const { return keyButtons_; }
    // Runs on Enter in the control, which then does not move on to the next one.
    void onEnter(QWidget* widget, Operation operation);

    const std::vector<Binding>& bindings() const { return bindings_; }
    const std::vector<QWidget*>& tabOrder() const { return tabOrder_; }
    void showForm();
    void readForm();

    // Gives controls sizes that follow from the screen's font: now, and again whenever the text size changes.
    void sized(std::function<void()> measure);
    // Text of this widget is always `factor` times as large as the program's.
    void scaleText(QWidget* widget, double factor);
    // The user's widths of this table's columns are kept, for all tables of the screen that go by this name.
    void keepsColumns(RowTable& table, const QString& name);

    // Gives the window the size that its contents need, and no more than this.
    void fit(QSize largest);
    // What the bar has made the window higher, in pixels.
    int grownBy() const { return grownBy_; }
    // What the user has just made of the window is kept at once, not a moment later.
    void keepWindow();
    // The program's letters have another size.
    void followTextSize();
    // The window and its columns are as if the user had never touched them.
    void resetWindow();

  protected:
    // Empties the form; gives what puts it back as it was.
    virtual std::function<void()> emptyForm() {
        return [] {};
    }
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    class ScreenDesk;
    friend class ScreenDesk;
    friend class Layout;

    QSize freeRoom() const;
    void takeSize();
    void giveSize(QSize size);
    int leastWidth() const;
    void keepOnDisplay();
    void windowEvent(const QEvent& event);
    void reveal(QWidget* widget);
    BoxPlace boxPlace();
    void applyTabOrder();
    void putBackKept();
    void takeKept();
    void barPressed(NoticeAction action);
    void offerTaken(const Operation& run);
    void operateQuietly(const Operation& run);
    void fitBar();
    QStringList typedBoxes() const;
    Draft draftOf(const QStringList& typed) const;
    std::optional<Draft> currentDraft() const;
    void restore(const Draft& draft);
    QString offeredKey() const;
    bool namesOther() const;
    void load(const desk::ScreenContext& named, const QHash<QString, QString>& recordBoxes);
    void settle(const std::optional<Draft>& before);
    void takeBaseline();
    void showAccent();
    void lookAtFile();
    void focusMoved(QWidget* from, QWidget* to);
    void pressWithKey(KeyButton* button);
    bool keyMayClose();
    void showAltKeys(bool shown);
    void followAlt(QEvent* event);

    Workplace& workplace_;
    QString title_;
    Keeps keeps_;
    desk::ScreenContext kept_;
    bool keeping_ = false;
    std::unique_ptr<ScreenDesk> desk_;
    Operation load_;
    QScrollArea* area_ = nullptr; // around the controls
    QWidget* buttons_ = nullptr;  // the row at the bottom
    std::vector<Binding> bindings_;
    std::vector<QWidget*> tabOrder_;
    std::vector<std::pair<QPointer<QWidget>, Operation>> leaving_;
    std::vector<std::pair<const QObject*, Operation>> entered_;
    std::vector<std::function<void()>> prepare_;
    std::vector<std::function<void()>> sized_;
    std::unique_ptr<WindowKeeper> keeper_;
    Subject subject_;
    NoticeBar* bar_;
    SearchBox* searchBox_ = nullptr;
    std::function<QString()> idleText_;
    std::function<void()> idlePressed_;
    QHash<QString, QString> baseline_; // what the boxes showed when they were filled
    QString strayKey_;                 // of a draft that was asked for and whose record is gone
    int grownBy_ = 0;                  // pixels, for the bar
    int showing_ = 0;
    int ending_ = 0;
    desk::Standing standing_ = desk::Standing::asRead;
    bool replaced_ = false; // the register's file is another one
    struct Asked {
        desk::AskedRecord record;
        desk::ScreenContext context;
    };
    std::optional<Asked> asked_;
    desk::AskedRecord listed_; // what a screen without a record of its own lists
    QString informed_;
    std::vector<desk::Offer> offers_;         // beside what was told
    std::vector<const desk::Control*> about_; // boxes that what was told holds for as they are
    std::vector<KeyButton*> keyButtons_;
    bool keyPressed_ = false;          // a key presses a button now
    QPushButton* registers_ = nullptr; // the button that wears the accent on an empty screen
    QPushButton* updates_ = nullptr;   // the one that wears it where a record is shown
    bool asks_ = true;
    bool busy_ = false;
    bool filling_ = false;
    bool lookAgain_ = false;
    bool closing_ = false;
    bool handedOver_ = false;
    bool placed_ = false;    // stands on the display with its frame
    bool sizeLater_ = false; // takes its size when it no longer fills the display
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

    // What the screen shows is the form's record held.
    void showsHeld(Subject subject) {
        subject.record = [this]() -> desk::Record& { return form_.held; };
        shows(std::move(subject));
    }

  protected:
    std::function<void()> emptyForm() override {
        return [this, before = std::exchange(form_, Form())] { form_ = before; };
    }

  private:
    Form form_;
};

} // namespace ui
