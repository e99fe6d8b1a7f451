#pragma once

#include "drive/screen_driver.h"
#include "support/register_fixture.h"

// The program's screens on a fresh register. A message box that is not announced, or not shown, fails the test.
class ScreenFixture : public RegisterFixture, protected drive::ScreenDriver {
  protected:
    ScreenFixture();
    ~ScreenFixture() override;
};
