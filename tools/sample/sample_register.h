#pragma once

#include <QDate>
#include <QString>

namespace sample {

inline constexpr int mostHouseholds = 32767;

// Makes a register of made-up households at the path: with 32,767 of them 150,000 members, 60,000 of them dead and in
// the death register with fourteen memorials each, and 32,767 graves; with fewer, as many as these shares give. The
// same number and date give the same rows. today: up to then people have died and services were held.
// Throws store::Error when the file exists or cannot be made; leaves no partial file.
void makeRegister(const QString& path, int households, QDate today);

} // namespace sample
