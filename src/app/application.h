#pragma once

class QApplication;

namespace app {

// What the program and everything that drives it share: name, Japanese texts of the toolkit, readable font size.
void prepare(QApplication& application);

} // namespace app
