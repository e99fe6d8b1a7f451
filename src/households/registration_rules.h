#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/screen_context.h"
#include "store/schema.h"

namespace households {

struct 檀家登Form {
    desk::Text frm01_no;
    desk::Text frm01_eno;
    desk::Text frm01_dankag;
    desk::Text frm01_dankak;
    desk::Option frm01_dnkkbn1; // 檀家
    desk::Option frm01_dnkkbn2; // 一般
    desk::Text frm01_toshug;
    desk::Text frm01_toshuk;
    desk::Text frm01_yubinno;
    desk::Text frm01_jyusho1;
    desk::Text frm01_jyusho2;
    desk::Text frm01_tel;
    desk::Text frm01_fax;
    desk::Combo frm01_地区;
    desk::Text frm01_biko;
    desk::Option frm01_haka_nai;  // 境内
    desk::Option frm01_haka_soto; // 境外
    desk::List frm01_haka_no;
    desk::List frm01_haka_banchi;
    desk::List frm01_haka_banchi2;
    desk::List frm01_haka_bohyo;

    // The household that the boxes show, looked up or registered here; 0 none.
    std::int16_t shownNo1 = 0;
    std::int16_t shownNo2 = 0;
};

// The operations of the household screen. Messages bear the title "檀家 登録".
// Opens empty ("0" numbers) or on the household in dnk_no1.
void openHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 照会: reads the household of frm01_no and frm01_eno, which become dnk_no1 and dnk_no2, and its graves in use. When
// there is none the form keeps what it showed.
void LoadHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 登録: issues a number and inserts the household.
void RegisterHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 更新 and 削除 act on the household last looked up or registered, and only while both number boxes show it.
void UpdateHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
void DeleteHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 檀家抹消: after a Yes hands the household shown to EraseHousehold, which asks again for each kind of data.
void eraseShownHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// お墓登録: opens お墓登 modal and lists the graves anew when it closes.
void openGraves(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// Publishes the household shown and opens another screen; refuses, with a message, a number that was not looked up or
// registered.
void openForHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk, const QString& screen);

// The check shared with the succession: given the required fields in screen order, turns the empty ones red and the
// others black, and brings the first empty one to the front of the tab order. True when all are filled. Shows nothing.
struct RequiredField {
    desk::Control& control;
    bool filled;
};
bool ValidateHousehold(std::initializer_list<RequiredField> fields);
inline const QString householdInvalid = QStringLiteral("ﾃﾞｰﾀにｴﾗｰがあり登録出来ません。入力した内容をﾁｪｯｸしてください");

// Copies the household that the form shows, saved or not, into the context. False, with nothing copied, when the number
// boxes hold no whole 16-bit numbers.
bool PublishHousehold(const 檀家登Form& form, desk::ScreenContext& context);

// "檀家" when chosen, else "一般"; "境内" when chosen, else "境外".
QString categoryText(bool parishioner);
QString placeText(bool withinGrounds);

} // namespace households
