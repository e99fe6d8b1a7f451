#pragma once

#include <QString>

#include <cstdint>
#include <random>
#include <set>

namespace sample {

// A source of chance whose run is the same everywhere for the same seed.
class Chance {
  public:
    explicit Chance(std::uint32_t seed) : engine_(seed) {}
    // A number from 0 up to, but not including, the bound.
    int below(int bound) { return static_cast<int>(engine_() % static_cast<std::uint32_t>(bound)); }
    int between(int lowest, int highest) { return lowest + below(highest - lowest + 1); }
    bool percent(int share) { return below(100) < share; }
    template <class T, std::size_t n> const T& of(const T (&items)[n]) { return items[below(static_cast<int>(n))]; }

  private:
    std::mt19937 engine_;
};

// A name as written and as read.
struct Name {
    QString kanji;
    QString kana;
};

Name familyName(Chance& chance);
// A given name, none of those already taken (as written), and then taken itself.
Name givenName(Chance& chance, bool woman, std::set<QString>& taken);
// A posthumous name of a grown woman or man.
Name posthumousName(Chance& chance, bool woman);

struct Address {
    QString postalCode;
    QString line1;
    QString line2; // often empty
    QString telephone;
    QString district;
};

Address address(Chance& chance);
// The districts that address() gives, in the order of a master list.
QStringList districts();

} // namespace sample
