#pragma once

#include <QString>

#include <cstdio>

// The commands of hoshiren-db that work on the register in the current folder. Each gives the program's exit status and
// prints what it did; what fails is thrown.

// One line in the terminal's encoding.
void say(FILE* where, const QString& text);

int backUp();
int listBackups();
int restoreRegister(const QString& file);
int showNames();
int writeNames();
