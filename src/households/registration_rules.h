#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/held.h"
#include "desk/screen_context.h"

namespace households {

// The boxes of a household that 檀家登 and 代替当 share.
struct HouseholdFields {
    desk::Text frm01_no;
    desk::Text frm01_eno;
    desk::Text frm01_dankag;
    desk::Text frm01_dankak;
    desk::Option frm01_dnkkbn1; // 檀家
    desk::Option frm01_dnkkbn2; // 一般
    desk::Text frm01_toshuk;
    desk::Text frm01_yubinno;
    desk::Text frm01_jyusho1;
    desk::Text frm01_jyusho2;
    desk::Text frm01_tel;
    desk::Text frm01_fax;
    desk::Combo frm01_地区;
    desk::Text frm01_biko;

    // The household shown: looked up, registered or opened here.
    desk::Held<store::tbl_danka> held;

    void showFields(const desk::HouseholdBlock& household);
    // The boxes, the head's name and the place of the grave apart; the numbers are those of the household held, 0 when
    // there is none.
    desk::HouseholdBlock fields() const;
};

struct 檀家登Form : HouseholdFields {
    desk::Text frm01_toshug;
    desk::Option frm01_haka_nai;  // 境内
    desk::Option frm01_haka_soto; // 境外
    desk::List frm01_haka_no;
    desk::List frm01_haka_banchi;
    desk::List frm01_haka_banchi2;
    desk::List frm01_haka_bohyo;
};

// The operations of the household screen. Messages bear the title "檀家 登録".
// Opens empty ("0" numbers) or on the household in dnk_no1.
void beginHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// The same on the branch that dnk_no2 names.
void loadBranch(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 照会: reads the household of frm01_no and frm01_eno, which are then shown as plain numbers and become dnk_no1 and
// dnk_no2, into form and context, and lists its graves in use. When there is none the form keeps what it showed.
void LoadHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 新規: empties the screen as for an opening without a household; the context names none.
void newHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 登録: issues a number, inserts the household and says so in the bar. Where a household has the same name and
// telephone already, the bar tells of it before the question.
void RegisterHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// The words in which 檀家登 refuses a household that is other than held.
desk::Refusal householdRefusal();
// 更新 and 削除 act on the household last looked up or registered, only while both number boxes show it and only while
// the file holds it as it was read. 更新 then offers in the bar to bring the copies of what changed into step.
void UpdateHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
void DeleteHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 檀家抹消: after a Yes hands the household shown to EraseHousehold, which asks again for each kind of data. A number
// that no household bears is asked about first; what it left is then found without a name.
void eraseShownHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// お墓登録: opens お墓登 modal and lists the graves anew when it closes.
void openGraves(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// Publishes the household shown and opens another screen; refuses, with a message, a number that was not looked up or
// registered.
void openForHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk, const QString& screen);

// Puts the numbers of the household held into the context.
void publishShown(const HouseholdFields& form, desk::ScreenContext& context);
// The same, so that the screen can be opened on it again: 0 for a new one.
void nameShown(const HouseholdFields& form, desk::ScreenContext& context);

// The check shared with the succession: given the required fields in screen order, turns the empty ones red and the
// others black, and brings the first empty one to the front of the tab order. True when all are filled. Shows nothing.
struct RequiredField {
    desk::Control& control;
    bool filled;
};
bool ValidateHousehold(std::initializer_list<RequiredField> fields, desk::ScreenContext& context);
inline const QString householdInvalid = QStringLiteral("ﾃﾞｰﾀにｴﾗｰがあり登録出来ません。入力した内容をﾁｪｯｸしてください");

// Hands the household that the form shows, saved or not, over to the screen that opens next. False, with nothing handed
// over, when the number boxes hold no whole 16-bit numbers.
bool PublishHousehold(const 檀家登Form& form, desk::ScreenContext& context);

} // namespace households
