#include "masters/postal_codes.h"

#include "desk/user_settings.h"
#include "store/database.h"
#include "values/cp932.h"
#include "values/numbers.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace masters {

namespace {

constexpr qint64 largestFile = 64 * 1024 * 1024; // bytes; the list has about twelve million
constexpr int digitsOfCode = 7;
constexpr qsizetype fieldsOfLine = 15;
enum Field { code = 2, prefecture = 6, city, town };

const QString setting = u"postalCodes/file"_s;

store::Error refused(const QString& path, const QString& why) {
    return {0,
            u"%1\nを郵便番号のファイルとして読めません。%2郵便番号のファイル（KEN_ALL.CSV）を選び直して下さい。"_s.arg(
                QDir::toNativeSeparators(path), why)};
}

// Neither a comma nor a quotation mark is the second byte of a character in Shift_JIS.
QByteArrayView field(QByteArrayView line, int number) {
    for (; number > 0; --number)
        line = line.sliced(line.indexOf(',') + 1);
    line = line.first(std::max<qsizetype>(line.indexOf(','), 0));
    return line.startsWith('"') && line.endsWith('"') && line.size() >= 2 ? line.sliced(1, line.size() - 2) : line;
}

std::optional<int> codeOf(QByteArrayView line) {
    if (std::ranges::count(line, ',') != fieldsOfLine - 1)
        return {};
    const QByteArrayView digits = field(line, Field::code);
    if (digits.size() != digitsOfCode || !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; }))
        return {};
    return digits.toInt();
}

// The town of the list without its remarks in brackets and the words that stand for any other place.
QString plainTown(QString town) {
    if (town == u"以下に掲載がない場合" || town.endsWith(u"の次に番地がくる場合") ||
        town.endsWith(u"の次に１～１９番地がくる場合"))
        return {};
    if (const auto bracket = town.indexOf(u'（'); bracket >= 0)
        town.truncate(bracket);
    if (town.endsWith(u"一円") && town != u"一円")
        return {};
    return town;
}

QString shared(const std::vector<PostalCodes::Place>& places) {
    const auto alike = [&](QString PostalCodes::Place::*part) {
        return std::ranges::all_of(places, [&](const auto& place) { return place.*part == places.front().*part; });
    };
    QString address;
    for (const auto part : {&PostalCodes::Place::prefecture, &PostalCodes::Place::city, &PostalCodes::Place::town}) {
        if (!alike(part))
            break;
        address += places.front().*part;
    }
    return address;
}

// The list of the file in use, read again where the file has changed; null where there is none.
const PostalCodes* inUse() {
    struct Known {
        QString path;
        qint64 size = 0;
        QDateTime changed;
        PostalCodes list;
    };
    static std::optional<Known> known;
    const QFileInfo file(postalCodesFile());
    if (!file.exists())
        return nullptr;
    if (!known || known->path != file.filePath() || known->size != file.size() ||
        known->changed != file.lastModified()) {
        known.reset();
        known = Known{file.filePath(), file.size(), file.lastModified(), PostalCodes::read(file.filePath())};
    }
    return &known->list;
}

std::optional<int> wholeCode(const QString& typed) {
    QString digits = values::halfWidth(typed);
    digits.removeIf([](QChar c) { return c == u'-' || c == u'ー' || c == u'〒' || c.isSpace(); });
    bool number = false;
    const int code = digits.toInt(&number);
    return number && digits.size() == digitsOfCode && code >= 0 ? std::optional(code) : std::nullopt;
}

} // namespace

PostalCodes PostalCodes::read(const QString& path) {
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        throw refused(path, u"ファイルを開けません。"_s);
    if (file.size() > largestFile)
        throw refused(path, u"大き過ぎます。"_s);
    PostalCodes list;
    list.bytes_ = file.readAll();
    if (file.error() != QFile::NoError)
        throw refused(path, u"最後まで読めません。"_s);
    list.utf8_ = QByteArrayView(list.bytes_).isValidUtf8();
    const QByteArrayView all(list.bytes_);
    const QByteArrayView mark("\xEF\xBB\xBF");
    int number = 0;
    for (qsizetype at = all.startsWith(mark) ? mark.size() : 0; at < all.size();) {
        qsizetype end = all.indexOf('\n', at);
        if (end < 0)
            end = all.size();
        ++number;
        const QByteArrayView line = all.sliced(at, end - at);
        if (!line.trimmed().isEmpty()) {
            const auto code = codeOf(line);
            if (!code)
                throw refused(path, u"%1行目が郵便番号の行ではありません。"_s.arg(number));
            list.index_.push_back({*code, at});
        }
        at = end + 1;
    }
    if (list.index_.empty())
        throw refused(path, u"中身がありません。"_s);
    std::ranges::stable_sort(list.index_, {}, &Entry::code);
    return list;
}

std::vector<PostalCodes::Place> PostalCodes::places(int code) const {
    std::vector<Place> found;
    bool continued = false; // the former line's town ends in its next one
    for (const Entry& entry : std::ranges::equal_range(index_, code, {}, &Entry::code)) {
        const QByteArrayView bytes = QByteArrayView(bytes_).sliced(entry.at);
        const auto end = bytes.indexOf('\n');
        const QByteArrayView line = end < 0 ? bytes : bytes.first(end);
        const auto text = [&](Field which) {
            QString decoded;
            if (utf8_)
                decoded = QString::fromUtf8(field(line, which));
            else
                values::cp932::decode(field(line, which), decoded);
            return decoded;
        };
        const QString town = text(Field::town);
        const bool rest = continued;
        continued = (continued || town.contains(u'（')) && !town.contains(u'）');
        if (rest)
            continue;
        const Place place{text(Field::prefecture), text(Field::city), plainTown(town)};
        if (std::ranges::find(found, place) == found.end())
            found.push_back(place);
    }
    return found;
}

QString postalCodesFile() {
    const QString chosen = desk::userSettings().value(setting).toString();
    if (!chosen.isEmpty() && QFileInfo::exists(chosen))
        return chosen;
    const QDir folder = QFileInfo(store::Database::registerPath()).absoluteDir();
    const QStringList beside = folder.entryList({u"KEN_ALL.CSV"_s, u"UTF_KEN_ALL.CSV"_s}, QDir::Files, QDir::Name);
    return beside.isEmpty() ? QString() : folder.filePath(beside.front());
}

std::size_t choosePostalCodes(const QString& path) {
    const std::size_t size = PostalCodes::read(path).size();
    desk::userSettings().setValue(setting, path);
    return size;
}

void fillAddress(const desk::Text& code, desk::Text& address, desk::Desk& desk) {
    const auto whole = wholeCode(code.text);
    if (!whole || !address.text.trimmed().isEmpty())
        return;
    try {
        const PostalCodes* list = inUse();
        const auto places = list ? list->places(*whole) : std::vector<PostalCodes::Place>();
        if (places.empty())
            return;
        address.text = shared(places);
        if (places.size() > 1)
            desk.inform(u"この郵便番号の町名は%1通りあります。続きを入れて下さい"_s.arg(places.size()));
    } catch (const store::Error& failure) {
        desk.inform(failure.message());
    }
}

} // namespace masters
