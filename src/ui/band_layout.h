#pragma once

#include <QLayout>

namespace ui {

// Places columns of frames side by side in lines of as equal a number as can be: in one line where the width holds
// them, else in the way that needs the least height. The columns of a line share its width and its height.
class BandLayout : public QLayout {
  public:
    BandLayout() = default;
    ~BandLayout() override;

    void addColumn(QLayout* column);

    void addItem(QLayoutItem* item) override;
    int count() const override { return static_cast<int>(items_.size()); }
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override;
    bool hasHeightForWidth() const override;
    int heightForWidth(int width) const override;
    int minimumHeightForWidth(int width) const override;
    QSize minimumSize() const override;
    QSize sizeHint() const override;
    void setGeometry(const QRect& rectangle) override;
    void invalidate() override;

  private:
    struct Cell {
        std::size_t item;
        int width;
    };
    using Line = std::vector<Cell>;

    std::vector<Line> linesOf(std::size_t columns, int width) const;
    const std::vector<Line>& lines(int width) const;
    int heightOf(const Line& line, bool least) const;
    int heightOf(const std::vector<Line>& lines, bool least) const;

    std::vector<QLayoutItem*> items_;
    // Asked for again and again while a window is sized.
    mutable std::vector<Line> lines_;
    mutable int linesWidth_ = -1;
};

} // namespace ui
