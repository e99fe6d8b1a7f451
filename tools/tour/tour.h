#pragma once

#include <QDir>

namespace tour {

// Makes an empty register in the folder, which must not hold one, and goes through the screens from the registration of
// a household to the printed label; leaves numbered pictures and the label's PDF there. Throws at the first step that
// does not go as it should.
void roadOfOneDeath(const QDir& folder);

// Leaves the pictures of the documents that the road does not pass in the folder: the screens of a made-up register.
void documentPictures(const QDir& folder);

} // namespace tour
