#pragma once

#include "desk/list_form.h"
#include "printing/listing.h"
#include "ui/screen.h"

namespace ui {

// All are called inside an operation of the screen. A list with nothing to print says so under its title instead.

// Shows the list as it would be printed, in a window that prints it (印刷) and writes it as a file (PDF).
void previewListing(Screen& screen, printing::Listing list);
// Prints it at once; of many sheets it asks first.
void printListing(Screen& screen, printing::Listing list);
// Writes it as a PDF beside the register.
void writeListing(Screen& screen, printing::Listing list);

// All that a list screen lists, under the columns that its grid names.
printing::Listing listingOf(Screen& screen, const desk::AnyList& list);

} // namespace ui
