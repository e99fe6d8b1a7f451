#pragma once

#include <QByteArray>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>

// A print server of the test's own on a free port of the loopback, with its configuration, spool and printers in a
// folder of its own. Needs cupsd, neither root nor a running system service. The program finds it, and no other, until
// it is destroyed.
class TestPrintServer {
  public:
    // `queues`: name, what its printer does ("prints", "fails", "lacks paper"), further lines of its description.
    struct Queue {
        QByteArray name;
        QByteArray printer = "prints";
        QByteArray lines = {};
    };
    explicit TestPrintServer(const std::vector<Queue>& queues, qint64 spoolBytes = 0);
    ~TestPrintServer();

    int port() const { return port_; }
    void freeze();
    void thaw();
    void stop();

    // What a printer was handed, once a job has reached it: job number, user, title, copies, options; the document.
    QByteArrayList arguments(const QByteArray& queue) const;
    QByteArray document(const QByteArray& queue) const;
    // How many jobs could still print something.
    int openJobs() const;
    // Forgets every job of a queue, as when its spool is lost.
    void forgetJobs(const QByteArray& queue) const;

  private:
    QByteArray read(const QByteArray& file) const;

    QTemporaryDir directory_;
    QProcess server_;
    int port_ = 0;
};

// A wire to a print server that fails when a document passes.
class FaultyWire : public QTcpServer {
  public:
    enum class Fault { breaksWithinDocument, breaksBeforeAnswer, silentAfterDocument };
    FaultyWire(int port, Fault fault);

    int broken = 0; // times

  private:
    void incomingConnection(qintptr handle) override;

    int port_;
    Fault fault_;
};
