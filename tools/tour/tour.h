#pragma once

#include <QDir>

namespace tour {

// Makes an empty register in the folder, which must not hold one, and goes through the screens from the registration of
// a household to the printed label; leaves numbered pictures and the label's PDF there. Throws at the first step that
// does not go as it should.
void roadOfOneDeath(const QDir& folder);

// Leaves pictures of the main menu, the household screen, a list and a label sheet in the folder.
void readmePictures(const QDir& folder);

} // namespace tour
