#pragma once

#include <QLayout>

namespace ui {

// Places widgets in a line at their own widths and goes on in a new line where the width ends. A stretch pushes what
// follows to the right end of its line.
class FlowLayout : public QLayout {
  public:
    explicit FlowLayout(QWidget* parent = nullptr);
    ~FlowLayout() override;

    // Extra room before the next widget.
    void addGap();
    void addStretch();
    // The next widget stays in one line with the one before it; so do the last ones.
    void keepNextTogether();
    void keepLastTogether(int widgets);

    void addItem(QLayoutItem* item) override;
    int count() const override;
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override;
    int heightForWidth(int width) const override;
    QSize minimumSize() const override;
    QSize sizeHint() const override;
    void setGeometry(const QRect& rectangle) override;

  private:
    struct Placed {
        QLayoutItem* item;
        int before; // room on its left, not at the beginning of a line
        bool right;
        bool together;
    };
    // Both are indexes into items_; the second is the one after the last.
    using Run = std::pair<std::size_t, std::size_t>;

    // The widgets from this one on that stay together.
    Run unitFrom(std::size_t first) const;
    int widthOf(const Run& run) const;
    // Runs of units, a line each.
    std::vector<Run> lines(int width) const;
    int heightOf(const Run& line) const;

    std::vector<Placed> items_;
    int gap_ = 0;
    bool right_ = false;
    bool together_ = false;
};

} // namespace ui
