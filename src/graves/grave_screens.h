#pragma once

#include "ui/workplace.h"

namespace graves {

std::unique_ptr<ui::Screen> お墓登(ui::Workplace& workplace); // one grave with the household that holds it
std::unique_ptr<ui::Screen> お墓新(ui::Workplace& workplace); // graves without household
std::unique_ptr<ui::Screen> お墓一(ui::Workplace& workplace); // the graves of a section
std::unique_ptr<ui::Screen> お墓通(ui::Workplace& workplace); // management-fee notices
std::unique_ptr<ui::Screen> 紐区画(ui::Workplace& workplace); // picker: free graves of a section
std::unique_ptr<ui::Screen> 紐墓標(ui::Workplace& workplace); // picker: graves by marker name

} // namespace graves
