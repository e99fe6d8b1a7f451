#include "labels/settings_rules.h"
#include "support/label_printer.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

#include <QSettings>

using namespace Qt::StringLiterals;
using labels::宛名設定Form;

namespace {

class LabelSettings : public RegisterFixture {
  protected:
    宛名設定Form opened() {
        宛名設定Form form;
        beginSettings(form, context, desk);
        return form;
    }

    const QString title = u"宛名設定"_s;
    TestDesk desk{today};
};

TEST_F(LabelSettings, GiveBackWhatWasChosenAndKeepTheSheet) {
    context.lbl_memorials = true;
    context.lbl_offered = {{u"3回忌"_s, 4}, {u"13回忌"_s, 2}};
    宛名設定Form form = opened();
    EXPECT_EQ(form.回忌選択.items, QStringList({u"3回忌（4件）"_s, u"13回忌（2件）"_s}));
    EXPECT_EQ(form.用紙.text, u"12面（2列 × 6段）"_s);
    tickNone(form, context, desk);
    desk.expect(u"通知する回忌を一つ以上選んで下さい"_s, title);
    takeSettings(form, context, desk);
    form.ticked[1] = true;
    form.用紙.text = u"21面（3列 × 7段）"_s;
    form.開始番号.text = u"２２"_s;
    desk.expect(u"開始位置は1から21の数字で入力して下さい"_s, title);
    takeSettings(form, context, desk);
    EXPECT_FALSE(context.lbl_taken || desk.closed);
    form.開始番号.text = u"１１"_s;
    takeSettings(form, context, desk);
    EXPECT_TRUE(context.lbl_taken && desk.closed);
    EXPECT_EQ(context.lbl_anniversaries, QStringList{u"13回忌"_s});
    EXPECT_EQ(context.lbl_start, 10);
    EXPECT_EQ(opened().用紙.text, u"21面（3列 × 7段）"_s);
    EXPECT_EQ(printing::stockKept().key, u"3x7"_s);
}

TEST_F(LabelSettings, RefuseASheetThatDoesNotFit) {
    宛名設定Form form = opened();
    form.用紙.text = printing::ownStockName;
    const struct {
        desk::Text 宛名設定Form::*box;
        QString text, message;
    } cases[] = {
        {&宛名設定Form::列数, u"0"_s, u"用紙の列数は1から10の数字で入力して下さい"_s},
        {&宛名設定Form::段数, u"六"_s, u"用紙の段数は1から30の数字で入力して下さい"_s},
        {&宛名設定Form::ラベル幅, u"8.3.8"_s, u"ラベルの幅は0以上の数字（mm）で入力して下さい"_s},
        {&宛名設定Form::ラベル幅, u"29.9"_s, u"ラベルが小さ過ぎます。幅30mm、高さ25mm以上で入力して下さい"_s},
        {&宛名設定Form::左右間隔, u"21.3"_s, u"ラベルが用紙の幅に入りません（右端 210.1mm、用紙 210mm）"_s},
        {&宛名設定Form::上余白, u"３８．５"_s, u"ラベルが用紙の高さに入りません（下端 297.7mm、用紙 297mm）"_s},
        {&宛名設定Form::上余白, u"-1"_s, u"上の余白は0以上の数字（mm）で入力して下さい"_s},
    };
    for (const auto& each : cases) {
        const QString before = std::exchange((form.*each.box).text, each.text);
        desk.expect(each.message, title);
        takeSettings(form, context, desk);
        (form.*each.box).text = before;
    }
    EXPECT_EQ(printing::stockKept(), printing::standardStock());
    form.ラベル幅.text = u"８０．５"_s;
    form.左右間隔.text = u"２"_s;
    takeSettings(form, context, desk);
    EXPECT_EQ(printing::stockKept().columnPitch, 82.5);
    EXPECT_EQ(opened().ラベル幅.text, u"８０．５"_s);
}

TEST_F(LabelSettings, FallBackToTheRegistersSheet) {
    const auto keys = {std::pair{u"labels/sheet"_s, u"9x99"_s}, {u"labels/sheet"_s, u"own"_s}};
    QSettings settings(u"hoshiren"_s, u"hoshiren"_s);
    settings.setValue(u"labels/width"_s, u"幅"_s);
    for (const auto& [key, value] : keys) {
        settings.setValue(key, value);
        EXPECT_EQ(printing::stockKept(), printing::standardStock());
        EXPECT_EQ(settings.value(key), value); // left as it is
    }
}

// Each sheet's own measures fit its paper, and no label lies on another.
TEST_F(LabelSettings, EverySheetFitsItsPaper) {
    for (const auto& stock : printing::labelStocks()) {
        EXPECT_LE(stock.labelLeft(stock.columns - 1) + stock.width, stock.paper.width + 1e-9)
            << stock.key.toStdString();
        EXPECT_LE(stock.labelTop(stock.labels() - 1) + stock.height, stock.paper.height + 1e-9);
        EXPECT_GE(stock.columnPitch, stock.width);
        EXPECT_GE(stock.rowPitch, stock.height);
    }
}

} // namespace
