#pragma once

#include "printing/printed_document.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <chrono>
#include <vector>

namespace printing {

// Between the thread that speaks to the print server and the one that waits for it. Either the first brings the matter
// to its end or the second gives up, never both.
class Conversation {
  public:
    // The server has answered, or taken a piece of the document.
    void heard() { heard_ = Clock::now(); }
    std::chrono::milliseconds silence() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - heard_.load());
    }

    // The whole document has left: what becomes of it is the server's affair until it is asked.
    void sent() { sent_ = true; }
    bool wasSent() const { return sent_; }

    // False when the other side was first.
    bool conclude() { return end(concluded); }
    bool giveUp() { return end(givenUp); }
    bool hasGivenUp() const { return state_ == givenUp; }

  private:
    using Clock = std::chrono::steady_clock;
    enum State { open, concluded, givenUp };

    bool end(State state) {
        State expected = open;
        return state_.compare_exchange_strong(expected, state);
    }

    std::atomic<Clock::time_point> heard_ = Clock::now();
    std::atomic<bool> sent_ = false;
    std::atomic<State> state_ = open;
};

// A queue of the print server.
struct Queue {
    QByteArray name;
    QString description; // as the office knows it; the name where it has none
    QByteArray uri;
    bool accepting = true;
    bool standard = false; // the user's default queue or, where he has none, the server's
};

// This queue takes no job; another one may.
class QueueRefused : public PrintFailure {
  public:
    using PrintFailure::PrintFailure;
};

// What is said when something went wrong after the document had left.
QString remarkOnLateSheets(const DocumentFacts& facts);

// The two questions below speak to the print server that libcups finds and block until it has answered: they are for a
// thread of its own. They throw PrintFailure with the server's reason.

// The queues that print; none where no print server runs.
std::vector<Queue> queuesOfServer(const DocumentFacts& facts, Conversation& conversation);

// Hands a PDF of upright pages to a queue as one job, every page on a sheet of the document's paper of its own, on one
// side and in its own size. Returns when the server has told that it holds all of it and the job has gone on for three
// seconds or is printed. Gives the reason why the job waits at the printer (out of paper), else an empty text. Throws
// when the server refuses, loses or aborts it; a job that is not wanted any more is cancelled. Concludes the
// conversation.
QString printOnQueue(const Queue& queue, const DocumentFacts& facts, const QByteArray& pdf, Conversation& conversation);

} // namespace printing
