#pragma once

#include "ui/workplace.h"

namespace transfer {

std::unique_ptr<ui::Screen> 檀家出力(ui::Workplace& workplace);
std::unique_ptr<ui::Screen> 檀家一括(ui::Workplace& workplace);
std::unique_ptr<ui::Screen> お墓出力(ui::Workplace& workplace);
std::unique_ptr<ui::Screen> お墓一括(ui::Workplace& workplace);

} // namespace transfer
