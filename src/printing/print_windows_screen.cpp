#include "printing/print_windows_screen.h"

#include <QEventLoop>
#include <QHBoxLayout>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace printing {
namespace {

QPushButton* button(const QString& name) {
    auto* made = new QPushButton(name);
    made->setObjectName(name);
    made->setAutoDefault(false);
    made->setMinimumHeight(34);
    return made;
}

const QString silent = u"印刷サーバーの返事がありません。プリンターとパソコンの状態を確認して下さい。"_s;

} // namespace

ServerWindow::ServerWindow(const DocumentFacts& facts, QWidget* opener)
    : QDialog(opener), facts_(facts), text_(new QLabel), stop_(button(u"中止"_s)) {
    setObjectName(u"印刷中"_s);
    setWindowTitle(facts.noun + u"印刷"_s);
    setWindowModality(Qt::ApplicationModal);
    setMinimumWidth(400);
    text_->setTextFormat(Qt::PlainText);
    auto* moving = new QProgressBar;
    moving->setRange(0, 0);
    moving->setTextVisible(false);
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(text_);
    whole->addWidget(moving);
    whole->addWidget(stop_, 0, Qt::AlignHCenter);
}

void ServerWindow::await(const QString& text, std::chrono::milliseconds patience, Conversation& conversation,
                         const std::function<bool()>& ready) {
    text_->setText(text);
    show();
    QString givenUp;
    QEventLoop loop;
    const auto leave = [&](const QString& reason) {
        // Where the server was quicker the job is done, whatever was pressed.
        if (conversation.giveUp())
            givenUp = reason;
        loop.quit();
    };
    QTimer look;
    connect(stop_, &QPushButton::clicked, &look, [&] { leave(printingStopped); });
    connect(&look, &QTimer::timeout, &look, [&] {
        if (ready())
            loop.quit();
        else if (conversation.silence() > patience)
            leave(silent);
    });
    look.start(50ms);
    loop.exec();
    // The program is about to end when the loop is left without a reason.
    if (givenUp.isEmpty() && !ready())
        leave(printingStopped);
    if (!givenUp.isEmpty())
        throw PrintFailure(facts_.failure(givenUp) +
                           (conversation.wasSent() ? u'\n' + remarkOnLateSheets(facts_) : QString()));
}

std::optional<Queue> chooseQueue(const DocumentFacts& facts, QWidget* opener, const std::vector<Queue>& queues) {
    QDialog window(opener);
    window.setObjectName(u"プリンター選択"_s);
    window.setWindowTitle(u"プリンターの選択"_s);
    window.setWindowModality(Qt::WindowModal);
    auto* said =
        new QLabel(u"%1を印刷するプリンターを選んで下さい。\n次からは、このプリンターに印刷します。"_s.arg(facts.noun));
    auto* list = new QListWidget;
    list->setObjectName(u"プリンター一覧"_s);
    list->setAccessibleName(u"プリンター一覧"_s);
    for (const Queue& queue : queues)
        list->addItem(queue.accepting ? queue.description : queue.description + u"（受け付け停止中）"_s);
    const auto ready = std::ranges::find(queues, true, &Queue::accepting);
    list->setCurrentRow(ready == queues.end() ? 0 : static_cast<int>(ready - queues.begin()));
    QPushButton* print = button(u"印刷"_s);
    print->setDefault(true);
    QPushButton* cancel = button(u"キャンセル"_s);
    QObject::connect(list, &QListWidget::itemActivated, &window, &QDialog::accept);
    QObject::connect(print, &QPushButton::clicked, &window, &QDialog::accept);
    QObject::connect(cancel, &QPushButton::clicked, &window, &QDialog::reject);

    auto* whole = new QVBoxLayout(&window);
    whole->addWidget(said);
    whole->addWidget(list);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(print);
    buttons->addWidget(cancel);
    whole->addLayout(buttons);
    window.resize(460, 300);
    list->setFocus();
    if (window.exec() != QDialog::Accepted || list->currentRow() < 0)
        return std::nullopt;
    return queues[static_cast<std::size_t>(list->currentRow())];
}

} // namespace printing
