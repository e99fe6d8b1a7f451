#pragma once

#include <QString>
#include <QStringList>

#include <cstdio>

// The commands of hoshiren-db; those without a file work on the register in the current folder. Each gives the
// program's exit status and prints what it did; what fails is thrown.

// One line in the terminal's encoding.
void say(FILE* where, const QString& text);

int backUp();
int listBackups();
int restoreRegister(const QString& file);
int showNames();
int writeNames();

// Brings records back from a copy or from what a deletion took, or tells what there is to bring back: with no argument
// the files, with one what differs in it; see the usage for more. Status 1 when something was left, 2 for other
// arguments.
int bringBack(const QStringList& arguments);

// Brings a register to the newest layout.
int upgrade(const QString& file);

// Makes a register from an older file (a Jet database), beside it. Status 1 when a row could not be taken or the new
// register contradicts itself, or when there is none because the older file is damaged.
int convertRegister(const QString& file);

// What convertRegister runs in a process of its own: reads the file into a new register at the path. Status 3 when it
// was made and something could not be taken; throws when it could not be made, and leaves a part of it.
int convertInto(const QString& file, const QString& draft);
