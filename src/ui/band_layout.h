#pragma once

#include <QLayout>

namespace ui {

// Places frames side by side in columns. Where the width does not hold the columns, they, or the frames one by one, go
// on in further lines of as equal a number as can be, in the way that needs the least height. The columns of a line
// share its width and its height.
class BandLayout : public QLayout {
  public:
    BandLayout() = default;
    ~BandLayout() override;

    // below: in one column with the former frame, as long as the columns stand side by side.
    void addFrame(QWidget* frame, bool below);

    void addItem(QLayoutItem* item) override;
    int count() const override { return static_cast<int>(frames_.size()); }
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
    struct Frame {
        QLayoutItem* item;
        bool below;
    };
    // Frames that stand below one another: indexes into frames_, the second one after the last.
    struct Column {
        std::size_t first;
        std::size_t end;
        int width = 0;
    };
    using Line = std::vector<Column>;

    std::vector<Column> columns(bool apart) const;
    QSize sizeOf(const Column& column, QSize (QLayoutItem::*of)() const) const;
    std::vector<Line> linesOf(const std::vector<Column>& columns, std::size_t across, int width) const;
    const std::vector<Line>& lines(int width) const;
    static int heightOf(const QLayoutItem& item, int width, bool least);
    int heightOf(const Line& line, bool least) const;
    int heightOf(const std::vector<Line>& lines, bool least) const;

    std::vector<Frame> frames_;
    // Asked for again and again while a window is sized.
    mutable std::vector<Line> lines_;
    mutable int linesWidth_ = -1;
};

} // namespace ui
