#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <deque>
#include <initializer_list>
#include <optional>
#include <span>
#include <vector>

class QIODevice;

// Records of the bulk files: comma-separated fields, one record a line.
namespace transfer {

// One record as read. Fields count from 1, as in the layouts of the files.
struct BulkRecord {
    std::vector<QString> fields; // as many as the layout has, whatever the line held
    QString error;               // why the record is rejected, empty when it is not
    std::vector<int> marked;     // numbers of the fields that caused it

    const QString& field(int number) const { return fields[static_cast<std::size_t>(number - 1)]; }
    bool rejected() const { return !error.isEmpty(); }
    void reject(const QString& message, std::initializer_list<int> numbers);
    // Both reject when the condition holds, and say whether it does.
    bool rejectIf(bool wrong, const QString& message, std::initializer_list<int> numbers);
    bool rejectEmpty(int number, const QString& message);
    // The field as a whole 16-bit number, an empty one as 0; nothing when it is none.
    std::optional<std::int16_t> number(int number) const;
    // The fields of these numbers as the error file shows them: marked ones behind "**", the error message last.
    std::vector<QString> errorLine(std::span<const int> numbers) const;
};

// Reads records from a device open for reading. The text is decoded strictly, as the Windows Japanese code page or,
// behind a byte-order mark, as UTF-8. A record ends at its line end (CR LF, LF or CR) whatever its quotes; an empty
// line is a record, but not the last one of the file. Fields in quotation marks hold commas and doubled quotation
// marks, others lose the blanks around them; character references (&#x20BB7;) are read back in both. ^Z at the end of
// the file is no part of it.
class BulkReader {
  public:
    BulkReader(QIODevice& device, int fieldCount);

    // Reads the next record; false at the end. A record with undecodable bytes, with another number of fields, or with
    // quotation marks that do not match comes out rejected. Lines that only together make a record, because there is a
    // line break between its quotation marks, come out as one rejected record. Throws store::Error when the device
    // fails.
    bool next(BulkRecord& record);

    // To the end of the last record read; of the file after the last one.
    qint64 bytesRead() const { return bytesRead_; }

  private:
    struct Line {
        QByteArray bytes;
        bool overlong = false;
        qint64 end = 0; // its place in the file
    };
    // How the text of a record fell into fields.
    struct Shape {
        int count = 0;
        int wrong = 0;     // fields whose quotation marks are wrong
        int lastWrong = 0; // number of the last one
        bool open = false; // the last field's quotation mark is not closed
        bool decoded = false;
    };

    bool atEnd();
    bool fill();
    bool readLine(Line& line);
    bool takeLine();
    Shape parse(QByteArrayView bytes, BulkRecord& record);
    bool complete(const Shape& shape) const { return shape.count == fieldCount_ && shape.wrong == 0; }
    bool joinLines(BulkRecord& record, Shape& shape);
    bool decode(QByteArrayView bytes);
    Shape split(BulkRecord& record) const;

    QIODevice& device_;
    const int fieldCount_;
    QByteArray block_;
    qsizetype at_ = 0;          // next byte of the block
    qint64 consumed_ = 0;       // bytes of the blocks before
    qsizetype waitingEnds_ = 0; // ^Z read, which may be the end
    Line line_;
    std::deque<Line> ahead_; // lines read behind it
    qint64 bytesRead_ = 0;
    QString text_;
    bool utf8_ = false;
    bool started_ = false;
    bool afterCr_ = false; // the last line ended with CR: an LF that follows belongs to it
};

// What a bulk file holds otherwise than the register does.
struct Altered {
    bool referred = false; // a character was written as a reference
    int lookAlikes = 0;    // characters written as the one that the code page holds in their place
};

// Appends one record to the bytes of a bulk file: every field in quotation marks, CR LF at the end. Five characters
// that the code page holds under another code point are written as that one; others that it does not hold, line breaks,
// and what looks like a character reference are written as references.
Altered appendRecord(QByteArray& bytes, std::span<const QString> fields);

} // namespace transfer
