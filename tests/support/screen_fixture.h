#pragma once

#include "drive/screen_driver.h"
#include "support/register_fixture.h"

// The program's screens on a fresh register. A message box that is not announced, or not shown, fails the test.
class ScreenFixture : public RegisterFixture, protected drive::ScreenDriver {
  protected:
    ScreenFixture();
    ~ScreenFixture() override;

    // Opens every screen of the program on a household with a row of each kind, and closes it after the look.
    void openEvery(const std::function<void(ui::Screen& shown)>& look);

  private:
    bool filled_ = false;
};
