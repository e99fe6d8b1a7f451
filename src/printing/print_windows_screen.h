#pragma once

#include "printing/print_server.h"

#include <QDialog>
#include <QLabel>

#include <functional>
#include <optional>

namespace printing {

inline const QString printingStopped = QStringLiteral("印刷を中止しました。");

// Stands over the opener while the print server is being asked: the program stays awake, and the user can only stop the
// printing.
class ServerWindow : public QDialog {
  public:
    ServerWindow(const DocumentFacts& facts, QWidget* opener);

    // Shows what is being waited for until `ready` says so. Throws PrintFailure, having given the conversation up, when
    // the user has pressed 中止 or the server has said nothing for as long as patience lasts.
    void await(const QString& text, std::chrono::milliseconds patience, Conversation& conversation,
               const std::function<bool()>& ready);

    void reject() override {} // neither Escape nor the frame's button closes it

  private:
    const DocumentFacts facts_;
    QLabel* text_;
    QPushButton* stop_;
};

// Lets the user choose one of several queues; none when he does not want to print.
std::optional<Queue> chooseQueue(const DocumentFacts& facts, QWidget* opener, const std::vector<Queue>& queues);

} // namespace printing
