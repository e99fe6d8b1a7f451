#pragma once

#include "ui/workplace.h"

#include <memory>

namespace copies {

// The register's copies and what deletions took.
std::unique_ptr<ui::Screen> 控え(ui::Workplace& workplace);

} // namespace copies
