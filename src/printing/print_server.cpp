#include "printing/print_server.h"

#include <QStringList>

#include <cups/cups.h>
#include <cups/pwg.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace printing {
namespace {

constexpr auto connecting = 10s;
// Who waits gives up long before. So long this side tries to take the job back then.
constexpr auto lingering = 60s;
constexpr auto watching = 3s;
constexpr auto betweenLooks = 200ms;

struct Closer {
    void operator()(http_t* connection) const { httpClose(connection); }
    void operator()(ipp_t* message) const { ippDelete(message); }
};
using Connection = std::unique_ptr<http_t, Closer>;
using Message = std::unique_ptr<ipp_t, Closer>;

// What the server said when it did not do what it was asked.
struct Refusal {
    ipp_status_t status;
    QString words;
};

Refusal lastRefusal() {
    return {cupsLastError(), QString::fromUtf8(cupsLastErrorString())};
}

QString inJapanese(ipp_status_t status, const DocumentFacts& facts) {
    switch (status) {
    case IPP_STATUS_ERROR_NOT_ACCEPTING_JOBS:
    case IPP_STATUS_ERROR_PRINTER_IS_DEACTIVATED:
        return u"このプリンターは印刷を受け付けない設定になっています。"_s;
    case IPP_STATUS_ERROR_NOT_FOUND:
    case IPP_STATUS_ERROR_GONE:
        return u"このプリンターは印刷サーバーにありません。"_s;
    case IPP_STATUS_ERROR_FORBIDDEN:
    case IPP_STATUS_ERROR_NOT_AUTHENTICATED:
    case IPP_STATUS_ERROR_NOT_AUTHORIZED:
    case IPP_STATUS_ERROR_CUPS_AUTHENTICATION_CANCELED:
        return u"このプリンターを使うことが許されていません。"_s;
    case IPP_STATUS_ERROR_DOCUMENT_FORMAT_NOT_SUPPORTED:
        return u"このプリンターはPDFを印刷できません。"_s;
    case IPP_STATUS_ERROR_REQUEST_ENTITY:
    case IPP_STATUS_ERROR_REQUEST_VALUE:
        return u"印刷サーバーが%1を受け取り切れません。ディスクの空きを確認して下さい。"_s.arg(facts.noun);
    case IPP_STATUS_ERROR_BUSY:
    case IPP_STATUS_ERROR_TEMPORARY:
    case IPP_STATUS_ERROR_TOO_MANY_JOBS:
        return u"印刷サーバーが混み合っています。"_s;
    default:
        return u"印刷サーバーが受け付けませんでした。"_s;
    }
}

QString inBrackets(const QString& words) {
    return words.isEmpty() ? words : u"（"_s + words + u"）"_s;
}

QString reasonOf(const Refusal& refusal, const DocumentFacts& facts) {
    return inJapanese(refusal.status, facts) + inBrackets(refusal.words);
}

QString cannotPrint(const Queue& queue, const QString& reason, const DocumentFacts& facts) {
    return facts.failure(u"プリンター「%1」に印刷できません。プリンターの状態を確認して下さい。\n理由：%2"_s.arg(
        queue.description, reason));
}

PrintFailure cannotAsk(const QString& reason, const DocumentFacts& facts) {
    return PrintFailure(facts.failure(
        u"印刷サーバーに問い合わせできません。パソコンの印刷の設定を確認して下さい。\n理由：%1"_s.arg(reason)));
}

const QString brokenOff = u"印刷サーバーとの接続が切れました。"_s;

// A connection to the server. It is kept up while somebody waits for the answer, or while a job is taken back.
class Server {
  public:
    explicit Server(Conversation& conversation, bool takesBack = false)
        : conversation_(conversation), takesBack_(takesBack) {
        // libcups would ask for a password on the terminal.
        cupsSetPasswordCB2([](const char*, http_t*, const char*, const char*, void*) -> const char* { return nullptr; },
                           nullptr);
        const auto most = static_cast<int>(std::chrono::milliseconds(connecting).count());
        connection_.reset(
            httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, cupsEncryption(), 1, most, nullptr));
        if (!connection_)
            return;
        const auto goOn = [](http_t*, void* server) { return static_cast<Server*>(server)->goesOn() ? 1 : 0; };
        httpSetTimeout(connection_.get(), 0.5, goOn, this);
    }

    bool connected() const { return connection_ != nullptr; }
    http_t* connection() { return connection_.get(); }

    // Null when the server does not answer; an answer may be a refusal.
    Message ask(Message request, const QByteArray& path) {
        if (!connection_)
            return {};
        Message answer(cupsDoRequest(connection_.get(), request.release(), path.constData()));
        if (answer)
            conversation_.heard();
        return answer;
    }

    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

  private:
    bool goesOn() const { return conversation_.silence() < lingering && (takesBack_ || !conversation_.hasGivenUp()); }

    Conversation& conversation_;
    const bool takesBack_;
    Connection connection_;
};

// Whether libcups speaks to this computer: there nothing listens where no print server is installed.
bool serverIsLocal() {
    const QByteArray server = cupsServer();
    return server.startsWith('/') || server == "localhost" || server == "::1" || server.startsWith("127.");
}

void addText(const Message& message, ipp_tag_t group, ipp_tag_t kind, const char* name, const QByteArray& value) {
    ippAddString(message.get(), group, kind, name, nullptr, value.constData());
}

template <std::size_t Size> void addRequested(const Message& message, const std::array<const char*, Size>& attributes) {
    ippAddStrings(message.get(), IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", static_cast<int>(Size),
                  nullptr, attributes.data());
}

// A request about a queue, or about a job of it.
Message requestFor(ipp_op_t operation, const Queue& queue, int job = 0) {
    Message message(ippNewRequest(operation));
    addText(message, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", queue.uri);
    if (job)
        ippAddInteger(message.get(), IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", job);
    addText(message, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", cupsUser());
    return message;
}

// What the server's administrator allows for a queue is told by its path.
QByteArray pathOf(const Queue& queue) {
    const qsizetype host = queue.uri.indexOf("//") + 2;
    const qsizetype path = queue.uri.indexOf('/', host);
    return path < 0 ? "/" : queue.uri.sliced(path);
}

QString textOf(const Message& message, const char* name) {
    ipp_attribute_t* found = ippFindAttribute(message.get(), name, IPP_TAG_ZERO);
    return found ? QString::fromUtf8(ippGetString(found, 0, nullptr)) : QString();
}

std::optional<int> numberOf(const Message& message, const char* name) {
    ipp_attribute_t* found = ippFindAttribute(message.get(), name, IPP_TAG_ZERO);
    return found ? std::optional(ippGetInteger(found, 0)) : std::nullopt;
}

QStringList keywordsOf(const Message& message, const char* name) {
    QStringList keywords;
    if (ipp_attribute_t* found = ippFindAttribute(message.get(), name, IPP_TAG_KEYWORD)) {
        for (int i = 0; i < ippGetCount(found); ++i)
            keywords << QString::fromUtf8(ippGetString(found, i, nullptr));
    }
    return keywords;
}

bool succeeded(const Message& answer) {
    return answer && ippGetStatusCode(answer.get()) < IPP_STATUS_REDIRECTION_OTHER_SITE;
}

// As printers know a size of paper: iso_a4_210x297mm; custom_... where it has no name of its own.
QByteArray mediaOf(const Paper& paper) {
    const auto hundredths = [](double millimetres) { return static_cast<int>(std::lround(millimetres * 100)); };
    const pwg_media_t* media = pwgMediaForSize(hundredths(paper.width), hundredths(paper.height));
    return media && media->pwg ? media->pwg : "iso_a4_210x297mm";
}

// What lays every page on its paper as it is: a queue's own defaults for all of this would move it. The page comes
// upright, whichever way it is read.
void addOptions(const Message& message, const Paper& paper) {
    ipp_t* job = message.get();
    addText(message, IPP_TAG_JOB, IPP_TAG_KEYWORD, "media", mediaOf(paper));
    addText(message, IPP_TAG_JOB, IPP_TAG_KEYWORD, "print-scaling", "none");
    ippAddBoolean(job, IPP_TAG_JOB, "fit-to-page", 0);
    ippAddInteger(job, IPP_TAG_JOB, IPP_TAG_INTEGER, "number-up", 1);
    addText(message, IPP_TAG_JOB, IPP_TAG_KEYWORD, "sides", "one-sided");
    ippAddInteger(job, IPP_TAG_JOB, IPP_TAG_ENUM, "orientation-requested", IPP_ORIENT_PORTRAIT);
    ippAddInteger(job, IPP_TAG_JOB, IPP_TAG_INTEGER, "copies", 1);
    // A cover sheet would take a sheet of labels.
    addText(message, IPP_TAG_JOB, IPP_TAG_NAME, "job-sheets", "none");
}

// Why a printer that holds a job does not print it, from its state reasons.
struct Trouble {
    const char* keyword;
    QString text;
};
const std::array troubles{
    Trouble{"media-empty", u"用紙がありません。"_s},
    Trouble{"media-needed", u"用紙がありません。"_s},
    Trouble{"media-jam", u"紙が詰まっています。"_s},
    Trouble{"cover-open", u"プリンターのふたが開いています。"_s},
    Trouble{"door-open", u"プリンターのふたが開いています。"_s},
    Trouble{"input-tray-missing", u"プリンターの用紙の入れ物が外れています。"_s},
    Trouble{"marker-supply-empty", u"インクかトナーがありません。"_s},
    Trouble{"toner-empty", u"インクかトナーがありません。"_s},
    Trouble{"offline", u"プリンターの電源が切れているか、つながっていません。"_s},
    Trouble{"connecting-to-device", u"プリンターの電源が切れているか、つながっていません。"_s},
    Trouble{"timed-out", u"プリンターの電源が切れているか、つながっていません。"_s},
};

QString troubleOf(const QStringList& reasons) {
    for (const QString& reason : reasons) {
        // A warning leaves the printer printing.
        if (reason.endsWith(u"-warning"))
            continue;
        const auto known = std::ranges::find_if(
            troubles, [&reason](const Trouble& each) { return reason.startsWith(QLatin1StringView(each.keyword)); });
        if (known != troubles.end())
            return known->text;
        if (reason.endsWith(u"-error"))
            return u"プリンターに異常があります（%1）。"_s.arg(reason);
    }
    return {};
}

// One job on its way. Asks on a new connection when the last one broke.
class Job {
  public:
    Job(const Queue& queue, const DocumentFacts& facts, const QByteArray& pdf, Conversation& conversation)
        : queue_(queue), facts_(facts), pdf_(pdf), conversation_(conversation), server_(std::in_place, conversation) {}

    QString print() {
        create();
        try {
            send();
            QString waiting = watch();
            if (!conversation_.conclude())
                throw failure(brokenOff);
            return waiting;
        } catch (const PrintFailure& told) {
            conversation_.heard(); // from now on it is time for this
            server_.emplace(conversation_, true);
            // Where the server answers, no sheet will come any more.
            if (!ask(requestFor(IPP_OP_CANCEL_JOB, queue_, job_), "/jobs/") && conversation_.wasSent())
                throw PrintFailure(told.message + u'\n' + remarkOnLateSheets(facts_));
            throw;
        }
    }

  private:
    PrintFailure failure(const QString& reason) const { return PrintFailure(cannotPrint(queue_, reason, facts_)); }

    // Null when the server does not answer.
    Message ask(Message request, const QByteArray& path) {
        if (!server_)
            server_.emplace(conversation_);
        Message answer = server_->ask(std::move(request), path);
        if (!answer)
            server_.reset();
        return answer;
    }

    // Makes the job, still without its document: it prints nothing, and the server drops it when none comes.
    void create() {
        Message request = requestFor(IPP_OP_CREATE_JOB, queue_);
        addText(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "job-name", facts_.jobTitle);
        addOptions(request, facts_.paper);
        const Message answer = ask(std::move(request), pathOf(queue_));
        if (!answer)
            throw failure(reasonOf(lastRefusal(), facts_));
        if (!succeeded(answer))
            throw QueueRefused(cannotPrint(queue_, reasonOf(lastRefusal(), facts_), facts_));
        job_ = numberOf(answer, "job-id").value_or(0);
        // Without a number the next requests would mean whatever the queue prints at the time.
        if (job_ <= 0)
            throw failure(inJapanese(IPP_STATUS_ERROR_INTERNAL, facts_));
    }

    void send() {
        Message request = requestFor(IPP_OP_SEND_DOCUMENT, queue_, job_);
        addText(request, IPP_TAG_OPERATION, IPP_TAG_MIMETYPE, "document-format", "application/pdf");
        ippAddBoolean(request.get(), IPP_TAG_OPERATION, "last-document", 1);
        const QByteArray path = pathOf(queue_);
        http_t* connection = server_->connection();
        http_status_t status = cupsSendRequest(connection, request.get(), path.constData(),
                                               ippLength(request.get()) + static_cast<std::size_t>(pdf_.size()));
        constexpr qsizetype piece = 1 << 15;
        for (qsizetype at = 0; status == HTTP_STATUS_CONTINUE && at < pdf_.size(); at += piece) {
            if (conversation_.hasGivenUp())
                throw failure(brokenOff);
            const auto length = static_cast<std::size_t>(std::min(piece, pdf_.size() - at));
            status = cupsWriteRequestData(connection, pdf_.constData() + at, length);
            conversation_.heard();
        }
        if (status == HTTP_STATUS_CONTINUE)
            conversation_.sent();
        const Message answer(cupsGetResponse(connection, path.constData()));
        if (succeeded(answer)) {
            conversation_.heard();
            return;
        }
        Refusal refusal = lastRefusal();
        status = httpGetStatus(connection);
        server_.reset();
        if (status == HTTP_STATUS_REQUEST_TOO_LARGE) // the server's disk is full, or its limit reached
            refusal.status = IPP_STATUS_ERROR_REQUEST_ENTITY;
        if (answer || status >= HTTP_STATUS_BAD_REQUEST)
            throw failure(reasonOf(refusal, facts_));
        if (!conversation_.wasSent())
            throw failure(brokenOff);
        // The answer is lost, not the document: the job's state tells whether it is there.
    }

    // Follows the job while it starts; gives the reason when it waits.
    QString watch() {
        static constexpr std::array asked{"job-state", "job-state-reasons", "job-k-octets", "job-printer-state-message",
                                          "job-printer-state-reasons"};
        const auto end = std::chrono::steady_clock::now() + watching;
        for (bool begun = false;; std::this_thread::sleep_for(betweenLooks)) {
            const bool last = std::chrono::steady_clock::now() >= end;
            if (conversation_.hasGivenUp())
                throw failure(brokenOff);
            Message request = requestFor(IPP_OP_GET_JOB_ATTRIBUTES, queue_, job_);
            addRequested(request, asked);
            const Message job = ask(std::move(request), "/jobs/");
            if (!job) {
                if (last)
                    throw failure(brokenOff);
                continue;
            }
            if (!succeeded(job)) {
                // Some servers forget a job once it is printed.
                if (begun)
                    return {};
                throw failure(u"%1が印刷サーバーから消えました。"_s.arg(facts_.noun));
            }
            const int state = numberOf(job, "job-state").value_or(0);
            if (state == IPP_JSTATE_CANCELED || state == IPP_JSTATE_ABORTED)
                throw failure(u"印刷サーバーが印刷を取り消しました。"_s + wordsOf(job));
            if (!isWhole(job)) {
                if (last)
                    throw failure(brokenOff);
                continue;
            }
            if (state == IPP_JSTATE_COMPLETED)
                return {};
            begun = begun || state == IPP_JSTATE_PROCESSING;
            QString waiting = waitingFor(job, state, begun, last);
            if (last || !waiting.isEmpty())
                return waiting;
        }
    }

    // Whether the server holds the document from its first octet to its last.
    bool isWhole(const Message& job) const {
        const QStringList reasons = keywordsOf(job, "job-state-reasons");
        const int kilooctets = static_cast<int>(pdf_.size() / 1024);
        return !reasons.contains(u"job-incoming") && !reasons.contains(u"job-data-insufficient") &&
               numberOf(job, "job-k-octets").value_or(kilooctets) >= kilooctets;
    }

    // A printer that stands still stands for the time being; what else it reports may pass, and counts in the end.
    QString waitingFor(const Message& job, int state, bool begun, bool last) {
        static constexpr std::array asked{"printer-state", "printer-state-reasons", "printer-state-message"};
        Message request = requestFor(IPP_OP_GET_PRINTER_ATTRIBUTES, queue_);
        addRequested(request, asked);
        const Message printer = ask(std::move(request), pathOf(queue_));
        const bool stopped = printer && numberOf(printer, "printer-state") == IPP_PSTATE_STOPPED;
        if (!last && !stopped)
            return {};
        const QStringList reasons = keywordsOf(job, "job-printer-state-reasons") +
                                    (printer ? keywordsOf(printer, "printer-state-reasons") : QStringList());
        if (QString trouble = troubleOf(reasons); !trouble.isEmpty())
            return trouble;
        if (stopped)
            return u"プリンターが止まっています。"_s + inBrackets(textOf(printer, "printer-state-message"));
        if (state == IPP_JSTATE_HELD)
            return u"印刷サーバーで保留になっています。"_s;
        if (state == IPP_JSTATE_STOPPED || (begun && state == IPP_JSTATE_PENDING))
            return u"プリンターが止まっています。"_s + inBrackets(textOf(job, "job-printer-state-message"));
        return {};
    }

    static QString wordsOf(const Message& job) {
        const QString message = textOf(job, "job-printer-state-message");
        return inBrackets(message.isEmpty() ? keywordsOf(job, "job-state-reasons").join(u", "_s) : message);
    }

    const Queue& queue_;
    const DocumentFacts& facts_;
    const QByteArray& pdf_;
    Conversation& conversation_;
    std::optional<Server> server_;
    int job_ = 0;
};

} // namespace

QString remarkOnLateSheets(const DocumentFacts& facts) {
    return u"後から%1が出てきたときは、それを捨てて、もう一度印刷して下さい。"_s.arg(facts.noun);
}

std::vector<Queue> queuesOfServer(const DocumentFacts& facts, Conversation& conversation) {
    const auto start = std::chrono::steady_clock::now();
    Server server(conversation);
    if (!server.connected()) {
        const bool refusedAtOnce = std::chrono::steady_clock::now() - start < connecting / 2;
        if (serverIsLocal() && refusedAtOnce)
            return {};
        throw cannotAsk(u"「%1」につながりません。"_s.arg(QString::fromUtf8(cupsServer())), facts);
    }
    static constexpr std::array asked{"printer-name", "printer-info", "printer-uri-supported",
                                      "printer-is-accepting-jobs"};
    Message request(ippNewRequest(IPP_OP_CUPS_GET_PRINTERS));
    ippAddInteger(request.get(), IPP_TAG_OPERATION, IPP_TAG_ENUM, "printer-type", 0);
    ippAddInteger(request.get(), IPP_TAG_OPERATION, IPP_TAG_ENUM, "printer-type-mask",
                  CUPS_PRINTER_FAX | CUPS_PRINTER_SCANNER);
    addText(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", cupsUser());
    addRequested(request, asked);
    const Message answer = server.ask(std::move(request), "/");
    if (answer && ippGetStatusCode(answer.get()) == IPP_STATUS_ERROR_NOT_FOUND)
        return {};
    if (!succeeded(answer))
        throw cannotAsk(reasonOf(lastRefusal(), facts), facts);

    std::vector<Queue> queues;
    bool within = false;
    for (ipp_attribute_t* each = ippFirstAttribute(answer.get()); each; each = ippNextAttribute(answer.get())) {
        if (ippGetGroupTag(each) != IPP_TAG_PRINTER) {
            within = false;
            continue;
        }
        if (!within)
            queues.emplace_back();
        within = true;
        Queue& queue = queues.back();
        const QByteArray name = ippGetName(each);
        if (name == "printer-name")
            queue.name = ippGetString(each, 0, nullptr);
        else if (name == "printer-info")
            queue.description = QString::fromUtf8(ippGetString(each, 0, nullptr));
        else if (name == "printer-uri-supported")
            queue.uri = ippGetString(each, 0, nullptr);
        else if (name == "printer-is-accepting-jobs")
            queue.accepting = ippGetBoolean(each, 0) != 0;
    }
    // The user's own default may be an instance of a queue, "name/instance".
    const QByteArray standard = QByteArray(cupsGetDefault2(server.connection())).split('/').constFirst();
    for (Queue& queue : queues) {
        queue.standard = queue.name == standard;
        if (queue.description.isEmpty())
            queue.description = QString::fromUtf8(queue.name);
    }
    return queues;
}

QString printOnQueue(const Queue& queue, const DocumentFacts& facts, const QByteArray& pdf,
                     Conversation& conversation) {
    return Job(queue, facts, pdf, conversation).print();
}

} // namespace printing
