#pragma once

#include "desk/desk.h"
#include "desk/form.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

// Addresses by postal code, from the post office's public list of all codes: a CSV file of fifteen fields a line, in
// Shift_JIS or in UTF-8, of which the third is the code and the seventh to ninth prefecture, city and town.
namespace masters {

class PostalCodes {
  public:
    // Reads and indexes the file. Throws store::Error, saying what is wrong, where it cannot be read or is no such
    // list.
    static PostalCodes read(const QString& path);

    // Prefecture, city and town of each place that bears the code, in the order of the file, each once; a town is left
    // out where the list only says that it is any other. Empty where there is none.
    struct Place {
        QString prefecture;
        QString city;
        QString town;
        bool operator==(const Place&) const = default;
    };
    std::vector<Place> places(int code) const;
    // How many places the list has.
    std::size_t size() const { return index_.size(); }

  private:
    struct Entry {
        int code;
        qsizetype at; // where its line begins
    };
    QByteArray bytes_;
    std::vector<Entry> index_; // by code, in the order of the file
    bool utf8_ = false;
};

// The file in use: the one chosen by the user, kept the desktop's way, else KEN_ALL.CSV or UTF_KEN_ALL.CSV (in any
// case) beside the register; empty where there is none.
QString postalCodesFile();

// Takes a file as the one in use. Throws as PostalCodes::read does; the file in use is then what it was. Gives how many
// places it has.
std::size_t choosePostalCodes(const QString& path);

// After the postal code was typed: where it is whole and the address is empty, fills the address with what all places
// of that code share. The list is read once as long as the file stays the same. Without a file nothing happens; of one
// that is none the bar tells.
void fillAddress(const desk::Text& code, desk::Text& address, desk::Desk& desk);

} // namespace masters
