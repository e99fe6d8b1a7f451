#include "printing/listing_pages.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <unordered_map>

using namespace Qt::StringLiterals;

namespace printing {
namespace {

constexpr double millimetresAPoint = 25.4 / 72.0;
constexpr double shortSide = 210.0; // of A4
constexpr double longSide = 297.0;
constexpr double sideMargin = 13.0;
constexpr double topMargin = 12.0;
constexpr double footMargin = 18.0; // the page number stands in it
constexpr double lineShare = 1.35;  // from line to line, of the size of the type
constexpr double thinRule = 0.12;
constexpr double thickRule = 0.35;
constexpr double headingGrey = 0.90;
constexpr double groupGrey = 0.95;
constexpr double ruleGrey = 0.65;

// Texts as they can be set in one font: what they measure, where they break.
class Texts {
  public:
    explicit Texts(const LabelFont& font) : font_(font) {}

    // Control characters (a line break, a tab) become blanks, what the font lacks 〓.
    QString settable(const QString& text) {
        const auto good = [&](const QChar& c) { return !c.isSurrogate() && of(c.unicode()).stands == Stands::itself; };
        if (std::ranges::all_of(text, good))
            return text;
        QString set;
        for (const char32_t c : text.toUcs4()) {
            const Stands stands = of(c).stands;
            if (stands == Stands::itself)
                set += QString::fromUcs4(&c, 1);
            else
                set += stands == Stands::blank ? u' ' : u'〓';
            if (const QString character = QString::fromUcs4(&c, 1);
                stands == Stands::missing && !missing_.contains(character))
                missing_ += character;
        }
        return set;
    }
    const QString& missing() const { return missing_; }

    // In millimetres at 1 point, of a settable text.
    double width(QStringView text) {
        double sum = 0;
        for (qsizetype at = 0; at < text.size(); ++at) {
            char32_t c = text[at].unicode();
            if (text[at].isHighSurrogate() && at + 1 < text.size())
                c = QChar::surrogateToUcs4(text[at], text[at + 1]);
            at += c > 0xFFFF ? 1 : 0;
            sum += of(c).width;
        }
        return sum;
    }

    // Breaks a settable text where the language allows it, inside a word only when the word alone is wider than the
    // room (millimetres at 1 point). Always at least one line.
    std::vector<QStringView> lines(const QString& text, double room) {
        if (width(text) <= room)
            return {text};
        std::vector<QStringView> lines;
        QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
        QTextBoundaryFinder breaks(QTextBoundaryFinder::Line, text);
        qsizetype start = 0;  // of the line
        qsizetype letter = 0; // where the letter looked at begins
        double used = 0;      // by the line up to there
        while (letter < text.size()) {
            letters.setPosition(letter);
            const qsizetype next = letters.toNextBoundary() > letter ? letters.position() : text.size();
            const double wide = width(QStringView(text).sliced(letter, next - letter));
            const bool blank = text[letter].isSpace(); // hangs over the edge
            if (used + wide > room && letter > start && !blank) {
                breaks.setPosition(letter);
                qsizetype end = letter;
                if (!breaks.isAtBoundary() && breaks.toPreviousBoundary() > start)
                    end = breaks.position();
                lines.push_back(withoutBlankEnd(QStringView(text).sliced(start, end - start)));
                start = letter = end;
                used = 0;
                continue;
            }
            used += wide;
            letter = next;
        }
        lines.push_back(QStringView(text).sliced(start));
        return lines;
    }

  private:
    enum class Stands { unknown, itself, blank, missing };
    struct Glyph {
        double width = 0;
        Stands stands = Stands::unknown;
    };

    static QStringView withoutBlankEnd(QStringView text) {
        while (!text.isEmpty() && text.back().isSpace())
            text.chop(1);
        return text;
    }

    const Glyph& of(char32_t c) {
        Glyph& glyph = c < plane_.size() ? plane_[c] : beyond_[c];
        if (glyph.stands == Stands::unknown)
            glyph = look(c);
        return glyph;
    }

    Glyph look(char32_t c) {
        const auto measured = [&](char32_t character) {
            return font_.width(QString::fromUcs4(&character, 1)) / LabelRun::fullPoints;
        };
        switch (QChar::category(c)) {
        case QChar::Other_Control:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return {measured(U' '), Stands::blank};
        case QChar::Other_Format:
        case QChar::Mark_NonSpacing:
            return {0, Stands::itself}; // joiners and variation selectors have no glyph of their own
        default:
            return font_.canPrint(c) ? Glyph{measured(c), Stands::itself} : Glyph{measured(U'〓'), Stands::missing};
        }
    }

    const LabelFont& font_;
    std::vector<Glyph> plane_ = std::vector<Glyph>(0x10000);
    std::unordered_map<char32_t, Glyph> beyond_;
    QString missing_;
};

// Sizes that follow from the type's.
struct Measures {
    explicit Measures(Type type) : points(type == Type::large ? 14.0 : 10.0) {}

    double points;
    double titlePoints = points * 1.6;
    double smallPoints = std::max(9.0, points * 0.75);
    double pitch = pitchOf(points);
    double padX = points * 0.16;
    double padY = points * 0.06;

    static double pitchOf(double size) { return size * millimetresAPoint * lineShare; }
};

// How wide columns of these natural widths stand in the room: as wide as they are, a little wider where there is room
// to spare, the widest ones narrowed alike where there is not.
std::vector<double> fitted(std::vector<double> natural, double room) {
    constexpr double mostSpread = 1.5;
    const double sum = std::accumulate(natural.begin(), natural.end(), 0.0);
    if (sum <= 0)
        return natural;
    if (sum <= room) {
        for (double& width : natural)
            width *= std::min(mostSpread, room / sum);
        return natural;
    }
    std::vector<double> sorted = natural;
    std::ranges::sort(sorted);
    double left = room;
    double cap = 0;
    for (std::size_t at = 0; at < sorted.size(); ++at) {
        cap = left / static_cast<double>(sorted.size() - at);
        if (sorted[at] > cap)
            break;
        left -= sorted[at];
    }
    for (double& width : natural)
        width = std::min(width, cap);
    return natural;
}

struct Piece {
    enum Kind { tableHeading, columnHeadings, groupHeading, groupGoesOn, row, sum, calendar, note } kind;
    double top;
    double height;
    std::size_t block = 0; // or the note's number
    std::size_t group = 0; // of a sum of the whole table: as many as there are groups
    std::size_t index = 0; // of the row or sum
    std::size_t firstLine = 0;
    std::size_t lines = 0;
};

using Cells = std::vector<std::vector<QStringView>>;

} // namespace

class ListingPages::Plan {
  public:
    Plan(Listing listing, const LabelFont& font)
        : listing_(std::move(listing)), texts_(font), measures_(listing_.type) {
        makeSettable();
        across_ = listing_.lie == Lie::across || (listing_.lie == Lie::fitting && !fitsUpright());
        left_ = sideMargin;
        room_ = paperWidth() - 2 * sideMargin;
        bottom_ = paperHeight() - footMargin;
        rangeLines_ = linesOf(listing_.range, room_, measures_.points);
        titleLines_ = linesOf(listing_.title, room_ * 0.65, measures_.titlePoints);
        top_ = topMargin + static_cast<double>(titleLines_.size()) * Measures::pitchOf(measures_.titlePoints) +
               (listing_.range.isEmpty() ? 0.0 : static_cast<double>(rangeLines_.size()) * measures_.pitch) + 2.5;
        newPage();
        for (std::size_t at = 0; at < listing_.blocks.size(); ++at) {
            widths_.emplace_back();
            if (const auto* table = std::get_if<ListingTable>(&listing_.blocks[at]))
                placeTable(*table, at);
            else
                placeCalendar(at);
        }
        placeNotes();
    }

    double paperWidth() const { return across_ ? longSide : shortSide; }
    double paperHeight() const { return across_ ? shortSide : longSide; }
    int count() const { return static_cast<int>(pages_.size()); }
    const Listing& listing() const { return listing_; }
    const QString& missing() const { return texts_.missing(); }

    Page page(int at) {
        Page page;
        paintFrame(page, at);
        for (const Piece& piece : pages_[static_cast<std::size_t>(at)])
            paint(page, piece);
        return page;
    }

  private:
    // Every text as it is set, so that places found now hold for what is painted later.
    void makeSettable() {
        const auto set = [this](QString& text) { text = texts_.settable(text); };
        const auto setAll = [&](QStringList& list) {
            for (qsizetype at = 0; at < list.size(); ++at)
                if (QString text = texts_.settable(list.at(at)); text != list.at(at))
                    list[at] = std::move(text);
        };
        set(listing_.title);
        set(listing_.range);
        set(listing_.date);
        setAll(listing_.notes);
        for (ListingBlock& block : listing_.blocks) {
            if (auto* calendar = std::get_if<ListingCalendar>(&block)) {
                setAll(calendar->weekdays);
                for (CalendarDay& day : calendar->days) {
                    set(day.label);
                    setAll(day.entries);
                }
                continue;
            }
            auto& table = std::get<ListingTable>(block);
            set(table.heading);
            for (ListingColumn& column : table.columns)
                set(column.heading);
            std::ranges::for_each(table.sums, setAll);
            for (ListingGroup& group : table.groups) {
                set(group.heading);
                std::ranges::for_each(group.rows, setAll);
                std::ranges::for_each(group.sums, setAll);
            }
        }
    }

    double widthOf(QStringView text, double points) { return texts_.width(text) * points; }
    std::vector<QStringView> linesOf(const QString& text, double room, double points) {
        return texts_.lines(text, room / points);
    }

    std::vector<double> naturalWidths(const ListingTable& table) {
        std::vector<double> widths;
        for (const ListingColumn& column : table.columns)
            widths.push_back(texts_.width(column.heading));
        const auto widen = [&](const QStringList& cells) {
            for (std::size_t at = 0; at < widths.size(); ++at)
                widths[at] = std::max(widths[at], texts_.width(cells.value(static_cast<qsizetype>(at))));
        };
        std::ranges::for_each(table.sums, widen);
        for (const ListingGroup& group : table.groups) {
            std::ranges::for_each(group.rows, widen);
            std::ranges::for_each(group.sums, widen);
        }
        // A hair more, so that what was measured for a width fits into it.
        for (double& width : widths)
            width = width * measures_.points + 2 * measures_.padX + 0.01;
        return widths;
    }

    bool fitsUpright() {
        return std::ranges::all_of(listing_.blocks, [this](const ListingBlock& block) {
            const auto* table = std::get_if<ListingTable>(&block);
            if (!table)
                return false;
            const auto widths = naturalWidths(*table);
            return std::accumulate(widths.begin(), widths.end(), 0.0) <= shortSide - 2 * sideMargin;
        });
    }

    // The lines of each cell of a row.
    Cells linesOfCells(std::size_t block, const QStringList& cells) {
        Cells lines;
        const std::vector<double>& widths = widths_[block];
        for (std::size_t at = 0; at < widths.size(); ++at) {
            if (static_cast<qsizetype>(at) < cells.size())
                lines.push_back(
                    linesOf(cells.at(static_cast<qsizetype>(at)), widths[at] - 2 * measures_.padX, measures_.points));
            else
                lines.emplace_back();
        }
        return lines;
    }
    static std::size_t mostLines(const Cells& cells) {
        std::size_t most = 1;
        for (const auto& lines : cells)
            most = std::max(most, lines.size());
        return most;
    }
    std::size_t rowLines(std::size_t block, const QStringList& cells) { return mostLines(linesOfCells(block, cells)); }
    double heightOf(std::size_t lines) const {
        return static_cast<double>(lines) * measures_.pitch + 2 * measures_.padY;
    }

    void newPage() {
        pages_.emplace_back();
        y_ = top_;
    }
    bool isFresh() const { return pages_.back().empty(); }
    bool fits(double height) const { return y_ + height <= bottom_ + 0.001; }
    void put(Piece piece) {
        piece.top = y_;
        y_ += piece.height;
        pages_.back().push_back(piece);
    }

    static QStringList headingsOf(const ListingTable& table) {
        QStringList headings;
        for (const ListingColumn& column : table.columns)
            headings << column.heading;
        return headings;
    }

    void placeTable(const ListingTable& table, std::size_t block) {
        widths_[block] = fitted(naturalWidths(table), room_);
        headings_.resize(block + 1);
        headings_[block] = headingsOf(table);
        const double heading = table.heading.isEmpty() ? 0.0 : heightOf(1);
        const double columns = heightOf(rowLines(block, headings_[block]));
        const double group = heightOf(1);
        bool begun = false;
        const auto begin = [&] {
            if (!begun && heading > 0)
                put({Piece::tableHeading, 0, heading, block});
            put({Piece::columnHeadings, 0, columns, block});
            begun = true;
        };
        const auto headed = [&](std::size_t at) {
            return at < table.groups.size() && !table.groups[at].heading.isEmpty();
        };
        // A row with what must not be torn from it: the headings above its first line, sums below.
        const auto place = [&](Piece::Kind kind, std::size_t at, std::size_t row, const QStringList& cells,
                               double sumsBelow) {
            const std::size_t lines = rowLines(block, cells);
            const bool opens = kind == Piece::row && row == 0 && headed(at);
            const double above = (begun ? 0.0 : heading + columns) + (opens ? group : 0.0);
            if (!fits(above + heightOf(lines) + sumsBelow) && (!isFresh() || begun)) {
                newPage();
                begin();
                if (headed(at) && !opens)
                    put({Piece::groupGoesOn, 0, group, block, at});
            } else if (!begun) {
                begin();
            }
            if (opens)
                put({Piece::groupHeading, 0, group, block, at});
            for (std::size_t first = 0; first < lines;) {
                const double room = bottom_ - y_ - 2 * measures_.padY;
                const auto fitting =
                    static_cast<std::size_t>(std::max(1.0, std::floor(room / measures_.pitch + 0.001)));
                const std::size_t now = std::min(fitting, lines - first);
                put({kind, 0, heightOf(now), block, at, row, first, now});
                first += now;
                if (first < lines) {
                    newPage();
                    begin();
                    if (headed(at))
                        put({Piece::groupGoesOn, 0, group, block, at});
                }
            }
        };
        const auto heightOfSums = [&](const std::vector<QStringList>& sums) {
            double height = 0;
            for (const QStringList& cells : sums)
                height += heightOf(rowLines(block, cells));
            return height;
        };
        const double whole = heightOfSums(table.sums);
        for (std::size_t at = 0; at < table.groups.size(); ++at) {
            const ListingGroup& rows = table.groups[at];
            const double below = heightOfSums(rows.sums) + (at + 1 == table.groups.size() ? whole : 0.0);
            for (std::size_t row = 0; row < rows.rows.size(); ++row)
                place(Piece::row, at, row, rows.rows[row], row + 1 == rows.rows.size() ? below : 0.0);
            for (std::size_t row = 0; row < rows.sums.size(); ++row)
                place(Piece::sum, at, row, rows.sums[row], 0);
        }
        for (std::size_t row = 0; row < table.sums.size(); ++row)
            place(Piece::sum, table.groups.size(), row, table.sums[row], 0);
        y_ += measures_.pitch;
    }

    void placeCalendar(std::size_t block) {
        if (!isFresh())
            newPage();
        put({Piece::calendar, 0, bottom_ - y_, block});
    }

    void placeNotes() {
        for (qsizetype at = 0; at < listing_.notes.size(); ++at) {
            const std::size_t lines = linesOf(listing_.notes.at(at), room_, measures_.points).size();
            for (std::size_t first = 0; first < lines; ++first) {
                if (!fits(measures_.pitch) && !isFresh())
                    newPage();
                put({Piece::note, 0, measures_.pitch, static_cast<std::size_t>(at), 0, 0, first, 1});
            }
        }
    }

    void write(Page& page, double x, double top, double points, QStringView text) {
        if (!text.isEmpty())
            page.texts.push_back({x, top, points, text.toString()});
    }
    void writeAligned(Page& page, double x, double width, double top, double points, QStringView text,
                      desk::Align align) {
        if (align != desk::Align::left) {
            const double spare = width - widthOf(text, points);
            x += align == desk::Align::right ? spare : spare / 2;
        }
        write(page, x, top, points, text);
    }
    static void rule(Page& page, double x, double top, double width, double thickness, double grey = 0) {
        page.areas.push_back({x, top - thickness / 2, width, thickness, grey});
    }

    void paintFrame(Page& page, int at) {
        double y = topMargin;
        for (const QStringView line : titleLines_) {
            write(page, left_, y, measures_.titlePoints, line);
            y += Measures::pitchOf(measures_.titlePoints);
        }
        const double down = (measures_.titlePoints - measures_.smallPoints) * millimetresAPoint;
        writeAligned(page, left_, room_, topMargin + down, measures_.smallPoints, listing_.date, desk::Align::right);
        if (!listing_.range.isEmpty())
            for (const QStringView line : rangeLines_) {
                write(page, left_, y, measures_.points, line);
                y += measures_.pitch;
            }
        const QString number = u"%1 / %2"_s.arg(at + 1).arg(count());
        writeAligned(page, left_, room_, paperHeight() - footMargin + 5, measures_.smallPoints, number,
                     desk::Align::center);
    }

    double tableWidth(std::size_t block) const {
        return std::accumulate(widths_[block].begin(), widths_[block].end(), 0.0);
    }

    void paintCells(Page& page, const Piece& piece, const ListingTable& table, const QStringList& cells) {
        const Cells lines = linesOfCells(piece.block, cells);
        double x = left_;
        for (std::size_t at = 0; at < lines.size(); ++at) {
            const double width = widths_[piece.block][at] - 2 * measures_.padX;
            double y = piece.top + measures_.padY;
            const std::size_t end = std::min(lines[at].size(), piece.firstLine + piece.lines);
            for (std::size_t line = piece.firstLine; line < end; ++line) {
                writeAligned(page, x + measures_.padX, width, y, measures_.points, lines[at][line],
                             table.columns[at].align);
                y += measures_.pitch;
            }
            x += widths_[piece.block][at];
        }
    }

    void paint(Page& page, const Piece& piece) {
        if (piece.kind == Piece::note) {
            const auto lines = linesOf(listing_.notes.at(static_cast<qsizetype>(piece.block)), room_, measures_.points);
            write(page, left_, piece.top, measures_.points, lines[piece.firstLine]);
            return;
        }
        if (piece.kind == Piece::calendar) {
            paintCalendar(page, piece, std::get<ListingCalendar>(listing_.blocks[piece.block]));
            return;
        }
        const auto& table = std::get<ListingTable>(listing_.blocks[piece.block]);
        const double width = tableWidth(piece.block);
        const double foot = piece.top + piece.height;
        switch (piece.kind) {
        case Piece::tableHeading:
            write(page, left_, piece.top + measures_.padY, measures_.points, table.heading);
            break;
        case Piece::columnHeadings: {
            page.areas.push_back({left_, piece.top, width, piece.height, headingGrey});
            Piece whole = piece;
            whole.lines = std::numeric_limits<std::size_t>::max();
            paintCells(page, whole, table, headings_[piece.block]);
            rule(page, left_, piece.top, width, thickRule);
            rule(page, left_, foot, width, thickRule);
            break;
        }
        case Piece::groupHeading:
        case Piece::groupGoesOn: {
            page.areas.push_back({left_, piece.top, width, piece.height, groupGrey});
            const QString& heading = table.groups[piece.group].heading;
            write(page, left_ + measures_.padX, piece.top + measures_.padY, measures_.points,
                  piece.kind == Piece::groupHeading ? u"■ "_s + heading : u"■ "_s + heading + u"（続き）"_s);
            rule(page, left_, foot, width, thinRule);
            break;
        }
        case Piece::row:
            paintCells(page, piece, table, table.groups[piece.group].rows[piece.index]);
            rule(page, left_, foot, width, thinRule, ruleGrey);
            break;
        default: { // sum
            const bool ofGroup = piece.group < table.groups.size();
            rule(page, left_, piece.top, width, thinRule);
            paintCells(page, piece, table,
                       ofGroup ? table.groups[piece.group].sums[piece.index] : table.sums[piece.index]);
            rule(page, left_, foot, width, thickRule);
        }
        }
    }

    void paintCalendar(Page& page, const Piece& piece, const ListingCalendar& calendar) {
        const auto weeks = static_cast<double>(calendar.days.size() / 7);
        const double heading = heightOf(1);
        const double wide = room_ / 7;
        const double high = (piece.height - heading) / std::max(1.0, weeks);
        page.areas.push_back({left_, piece.top, room_, heading, headingGrey});
        for (int column = 0; column < 7; ++column)
            writeAligned(page, left_ + column * wide, wide, piece.top + measures_.padY, measures_.points,
                         calendar.weekdays.value(column), desk::Align::center);
        for (std::size_t at = 0; at < calendar.days.size(); ++at) {
            const double x = left_ + static_cast<double>(at % 7) * wide;
            const double top = piece.top + heading + static_cast<double>(at / 7) * high;
            const CalendarDay& day = calendar.days[at];
            if (day.label.isEmpty())
                page.areas.push_back({x, top, wide, high, groupGrey});
            else
                paintDay(page, day, x + measures_.padX, top + measures_.padY, wide - 2 * measures_.padX,
                         high - 2 * measures_.padY);
        }
        rule(page, left_, piece.top, room_, thickRule);
        for (double week = 0; week <= weeks; ++week)
            rule(page, left_, piece.top + heading + week * high, room_,
                 week == 0 || week == weeks ? thickRule : thinRule);
        for (int column = 0; column <= 7; ++column)
            page.areas.push_back({left_ + column * wide - thinRule / 2, piece.top, thinRule, piece.height, 0});
    }

    void paintDay(Page& page, const CalendarDay& day, double x, double top, double width, double height) {
        write(page, x, top, measures_.points, day.label);
        const double pitch = Measures::pitchOf(measures_.smallPoints);
        const auto room = static_cast<std::size_t>(std::max(0.0, std::floor((height - measures_.pitch) / pitch)));
        std::vector<std::vector<QStringView>> entries;
        for (const QString& entry : day.entries)
            entries.push_back(linesOf(entry, width, measures_.smallPoints));
        std::size_t all = 0;
        for (const auto& lines : entries)
            all += lines.size();
        // Where not all have room, the last line tells how many more there are.
        const std::size_t usable = all <= room ? room : std::max<std::size_t>(room, 1) - 1;
        double y = top + measures_.pitch;
        std::size_t used = 0;
        std::size_t shown = 0;
        for (; shown < entries.size() && used + entries[shown].size() <= usable; ++shown)
            for (const QStringView line : entries[shown]) {
                write(page, x, y, measures_.smallPoints, line);
                y += pitch;
                ++used;
            }
        if (shown < entries.size())
            write(page, x, y, measures_.smallPoints, u"ほか %1 件"_s.arg(entries.size() - shown));
    }

    Listing listing_;
    Texts texts_;
    Measures measures_;
    bool across_ = false;
    double left_ = 0;
    double room_ = 0;
    double top_ = 0;
    double bottom_ = 0;
    double y_ = 0;
    std::vector<QStringView> titleLines_;
    std::vector<QStringView> rangeLines_;
    std::vector<std::vector<double>> widths_; // of each block's columns, millimetres
    std::vector<QStringList> headings_;
    std::vector<std::vector<Piece>> pages_;
};

ListingPages::ListingPages(Listing listing, const LabelFont& font)
    : plan_(std::make_unique<Plan>(std::move(listing), font)) {}
ListingPages::~ListingPages() = default;
ListingPages::ListingPages(ListingPages&&) noexcept = default;

const Listing& ListingPages::listing() const {
    return plan_->listing();
}
double ListingPages::paperWidth() const {
    return plan_->paperWidth();
}
double ListingPages::paperHeight() const {
    return plan_->paperHeight();
}
int ListingPages::count() const {
    return plan_->count();
}
Page ListingPages::page(int at) const {
    return plan_->page(at);
}
const QString& ListingPages::missing() const {
    return plan_->missing();
}

} // namespace printing
