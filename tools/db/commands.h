#pragma once

#include <QString>

#include <cstdio>

// The commands of hoshiren-db; all but the last work on the register in the current folder. Each gives the program's
// exit status and prints what it did; what fails is thrown.

// One line in the terminal's encoding.
void say(FILE* where, const QString& text);

int backUp();
int listBackups();
int restoreRegister(const QString& file);
int showNames();
int writeNames();

// Makes a register from an older file (a Jet database), beside it. Status 1 when a row could not be taken or the new
// register contradicts itself. A program that was built without the library for such files throws.
int convertRegister(const QString& file);
