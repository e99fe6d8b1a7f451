#pragma once

#include "desk/held.h"
#include "store/schema.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <map>
#include <vector>

// Management fees that are received: what they come to, whose they can be, and how they are written.
namespace graves {

struct FeeSum {
    qint64 graves = 0;
    qint64 yen = 0;
    qint64 without = 0; // graves whose fee is not registered; they are counted and add nothing

    void add(const store::tbl_ohaka& grave);
};

// "15,000円"; where fees are not registered, with how many.
QString sumText(const FeeSum& sum);

// Why the fee of a grave cannot be received, as a sentence that names it; empty where it can.
QString whyNotReceived(const store::tbl_ohaka& grave);

// The graves chosen for 受領, by number, each as it was listed last.
using ChosenGraves = std::map<std::int16_t, store::tbl_ohaka>;

FeeSum sumOf(const ChosenGraves& graves);

using Receipt = desk::Rewritten<store::tbl_ohaka>;

// What 受領 makes of the graves: received on the day, and to be billed again a year after the date stored (of 29
// February, on the 28th).
std::vector<Receipt> receiptsOf(const ChosenGraves& graves, QDate day);

// The same turned round: from what 受領 made of them to what they were.
std::vector<Receipt> takenBack(const std::vector<Receipt>& receipts);

// A line for each grave that is other than it was read, with what became of it; of many, the first ones.
QString changesText(const std::vector<desk::Other<store::tbl_ohaka>>& others);

} // namespace graves
