#pragma once

class QApplication;

namespace app {

// What the program and everything that drives it share: name, Japanese texts of the toolkit, letters of a readable
// size, which is the one that the user chose.
void prepare(QApplication& application);

} // namespace app
