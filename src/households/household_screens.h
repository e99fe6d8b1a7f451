#pragma once

#include "ui/workplace.h"

namespace households {

std::unique_ptr<ui::Screen> 檀家登(ui::Workplace& workplace);
std::unique_ptr<ui::Screen> 檀家一覧(ui::Workplace& workplace);

} // namespace households
