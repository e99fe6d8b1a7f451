#pragma once

#include "desk/form.h"
#include "ui/row_table.h"

namespace ui {

// Shows a desk::Grid, its blank rows included.
class GridView : public RowTable {
  public:
    explicit GridView(QWidget* parent = nullptr);

    void show(const desk::Grid& grid);

    int filledRows() const override;
    int pickedRow() const override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    class Model;

    Model* model_;
};

} // namespace ui
