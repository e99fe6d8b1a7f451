#pragma once

#include "ui/workplace.h"

namespace memorials {

std::unique_ptr<ui::Screen> 法要明(ui::Workplace& workplace);
std::unique_ptr<ui::Screen> 法要外(ui::Workplace& workplace);
std::unique_ptr<ui::Screen> 法要一(ui::Workplace& workplace);
std::unique_ptr<ui::Screen> 法要個(ui::Workplace& workplace);
std::unique_ptr<ui::Screen> 法要檀(ui::Workplace& workplace);
std::unique_ptr<ui::Screen> 法要通(ui::Workplace& workplace);

} // namespace memorials
