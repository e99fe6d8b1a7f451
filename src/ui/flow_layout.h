#pragma once

#include <QLayout>

namespace ui {

// Places widgets in a line and goes on in a new one where the width ends. A stretch pushes what follows to the right
// end of the last line.
class FlowLayout : public QLayout {
  public:
    explicit FlowLayout(QWidget* parent);
    ~FlowLayout() override;

    // Extra room before the next widget.
    void addGap();
    void addStretch();

    void addItem(QLayoutItem* item) override;
    int count() const override;
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize minimumSize() const override;
    QSize sizeHint() const override;
    void setGeometry(const QRect& rectangle) override;

  private:
    struct Placed {
        QLayoutItem* item;
        int before;
        bool right;
    };
    int place(const QRect& outside, bool apply) const;

    std::vector<Placed> items_;
    int gap_ = 0;
    bool right_ = false;
};

} // namespace ui
