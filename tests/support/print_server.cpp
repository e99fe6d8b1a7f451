#include "support/print_server.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QStandardPaths>
#include <QTcpSocket>

#include <cups/cups.h>

#include <csignal>
#include <memory>
#include <stdexcept>
#include <thread>

#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// The last step on the way to a printer. The server runs it for itself alone, so as root where that runs the tests.
constexpr auto printer = R"(#!/bin/sh
[ $# -gt 0 ] || exit 0
queue=${0%/bin/backend/*}/printed/$PRINTER
printf '%s\n' "$@" >"$queue.arguments"
case $DEVICE_URI in
    *:fails) exit 1 ;;
    *:lacks*) echo "STATE: +media-empty-error" >&2; exec sleep 60 ;;
esac
cat ${6+"$6"} >"$queue.part" && mv "$queue.part" "$queue.document"
)";

constexpr auto rules = R"(Browsing No
LogLevel error
ErrorPolicy abort-job
DefaultAuthType None
WebInterface No
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
)";

void write(const QString& path, const QByteArray& text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() ||
        !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        throw std::runtime_error("cannot be written: " + path.toStdString());
}

http_t* connectTo(int port) {
    return httpConnect2("127.0.0.1", port, nullptr, AF_UNSPEC, HTTP_ENCRYPTION_IF_REQUESTED, 1, 5000, nullptr);
}

int freePort() {
    QTcpServer any;
    any.listen(QHostAddress::LocalHost);
    return any.serverPort();
}

} // namespace

TestPrintServer::TestPrintServer(const std::vector<Queue>& queues, qint64 spoolBytes) : port_(freePort()) {
    const QDir root(directory_.path());
    for (const QString& folder :
         {u"spool/tmp"_s, u"cache"_s, u"state"_s, u"bin/backend"_s, u"bin/daemon"_s, u"printed"_s})
        root.mkpath(folder);
    const QString installed = QStandardPaths::findExecutable(u"cupsd"_s, {u"/usr/sbin"_s, u"/usr/local/sbin"_s});
    // A copy: the system's own may be confined to the system's folders.
    const QString program = root.filePath(u"cupsd"_s);
    const QString starter =
        QStandardPaths::findExecutable(u"cups-exec"_s, {u"/usr/lib/cups/daemon"_s, u"/usr/libexec/cups/daemon"_s});
    if (!QFile::copy(installed, program) || !QFile::link(starter, root.filePath(u"bin/daemon/cups-exec"_s)))
        throw std::runtime_error("cupsd (cups-daemon) is needed");

    const QByteArray here = root.path().toUtf8();
    write(root.filePath(u"bin/backend/test"_s), printer);
    write(root.filePath(u"cupsd.conf"_s), "Listen 127.0.0.1:" + QByteArray::number(port_) + '\n' + rules);
    write(root.filePath(u"cups-files.conf"_s),
          "ErrorLog " + here + "/errors\nAccessLog " + here + "/access\nPageLog " + here + "/pages\nCacheDir " + here +
              "/cache\nRequestRoot " + here + "/spool\nTempDir " + here + "/spool/tmp\nServerBin " + here +
              "/bin\nServerRoot " + here + "\nStateDir " + here + "/state\nPrintcap\n");
    QByteArray printers;
    for (const Queue& queue : queues)
        printers += "<Printer " + queue.name + ">\nInfo Printer " + queue.name + "\nDeviceURI test:" + queue.printer +
                    "\nState Idle\nAccepting Yes\n" + queue.lines + "</Printer>\n";
    write(root.filePath(u"printers.conf"_s), printers);

    if (spoolBytes) {
        server_.setChildProcessModifier([spoolBytes] {
            const rlimit most{static_cast<rlim_t>(spoolBytes), static_cast<rlim_t>(spoolBytes)};
            setrlimit(RLIMIT_FSIZE, &most);
            std::signal(SIGXFSZ, SIG_IGN);
        });
    }
    server_.setProcessChannelMode(QProcess::ForwardedChannels);
    server_.start(program,
                  {u"-f"_s, u"-c"_s, root.filePath(u"cupsd.conf"_s), u"-s"_s, root.filePath(u"cups-files.conf"_s)});
    const QDeadlineTimer patience(20s);
    QTcpSocket knock;
    do {
        knock.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port_));
        if (knock.waitForConnected(100))
            break;
        std::this_thread::sleep_for(20ms);
    } while (!patience.hasExpired());
    if (knock.state() != QAbstractSocket::ConnectedState)
        throw std::runtime_error("cupsd does not start: " + read("errors").toStdString());
    qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(port_));
    // Neither the default printer of this computer nor that of its user.
    qputenv("CUPS_SERVERROOT", here);
    qputenv("HOME", here);
}

TestPrintServer::~TestPrintServer() {
    stop();
    qputenv("CUPS_SERVER", "/nonexistent");
}

void TestPrintServer::freeze() {
    kill(static_cast<pid_t>(server_.processId()), SIGSTOP);
}

void TestPrintServer::thaw() {
    kill(static_cast<pid_t>(server_.processId()), SIGCONT);
}

void TestPrintServer::stop() {
    if (server_.state() == QProcess::NotRunning)
        return;
    thaw();
    server_.terminate();
    if (!server_.waitForFinished(5000))
        server_.kill();
    server_.waitForFinished();
}

QByteArrayList TestPrintServer::arguments(const QByteArray& queue) const {
    return read("printed/" + queue + ".arguments").split('\n');
}

QByteArray TestPrintServer::document(const QByteArray& queue) const {
    return read("printed/" + queue + ".document");
}

int TestPrintServer::openJobs() const {
    http_t* connection = connectTo(port_);
    cups_job_t* jobs = nullptr;
    const int count = cupsGetJobs2(connection, &jobs, nullptr, 0, CUPS_WHICHJOBS_ACTIVE);
    cupsFreeJobs(count, jobs);
    httpClose(connection);
    return count;
}

void TestPrintServer::forgetJobs(const QByteArray& queue) const {
    http_t* connection = connectTo(port_);
    cupsCancelJob2(connection, queue.constData(), CUPS_JOBID_ALL, 1);
    httpClose(connection);
}

QByteArray TestPrintServer::read(const QByteArray& file) const {
    QFile found(directory_.filePath(QString::fromUtf8(file)));
    return found.open(QIODevice::ReadOnly) ? found.readAll() : QByteArray();
}

FaultyWire::FaultyWire(int port, Fault fault) : port_(port), fault_(fault) {
    listen(QHostAddress::LocalHost);
    qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(serverPort()));
}

void FaultyWire::incomingConnection(qintptr handle) {
    auto* program = new QTcpSocket(this);
    program->setSocketDescriptor(handle);
    auto* server = new QTcpSocket(this);
    server->connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port_));
    const auto cut = [this, program, server] {
        ++broken;
        program->abort();
        server->disconnectFromHost(); // what it was sent before arrives
    };
    // Questions are short; what is longer is a document.
    constexpr qsizetype question = 8000;
    const auto passed = std::make_shared<qsizetype>(0);
    connect(program, &QTcpSocket::readyRead, server, [=, this] {
        const QByteArray piece = program->readAll();
        if (fault_ == Fault::breaksWithinDocument && *passed + piece.size() > question) {
            server->write(piece.first(question - *passed));
            cut();
            return;
        }
        *passed += piece.size();
        server->write(piece);
    });
    connect(server, &QTcpSocket::readyRead, program, [=, this] {
        const QByteArray piece = server->readAll();
        if (*passed <= question)
            program->write(piece);
        else if (fault_ == Fault::breaksBeforeAnswer)
            cut();
    });
    connect(program, &QTcpSocket::disconnected, server, &QTcpSocket::disconnectFromHost);
    connect(server, &QTcpSocket::disconnected, program, &QTcpSocket::disconnectFromHost);
}
