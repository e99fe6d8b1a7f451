#include "support/older_register.h"
#include "support/screen_fixture.h"

#include "app/first_start.h"
#include "store/backup.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

class FirstStart : public ScreenFixture {
  protected:
    void answerOffer(bool yes) {
        answer(u"登録簿がまだありません。\n\n%1\n\nここに空の登録簿を新しく作りますか？\n"
               "控えから元に戻すときや、登録簿を別の場所に置いているときは「いいえ」を選んで下さい。"_s.arg(
                   QDir::toNativeSeparators(file)),
               u"Hoshiren"_s, yes);
    }
    const QString folder = path(u"書類/Hoshiren"_s);
    const QString file = folder + u"/Hoshiren.mdb"_s;
};

TEST_F(FirstStart, MakesARegisterOnlyWhenItIsWanted) {
    answerOffer(false);
    EXPECT_FALSE(app::offerRegister(folder));
    EXPECT_FALSE(QFileInfo::exists(folder));

    answerOffer(true);
    EXPECT_TRUE(app::offerRegister(folder));
    EXPECT_NO_THROW(store::Database{file});
    EXPECT_EQ(QFile::permissions(file) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    // What is there is left alone: the program itself tells what is wrong with it.
    ASSERT_TRUE(QFile::resize(file, 14));
    EXPECT_TRUE(app::offerRegister(folder));
    EXPECT_EQ(QFileInfo(file).size(), 14);
}

TEST_F(FirstStart, BringsAnOlderRegisterToTheNewestWhenItIsWanted) {
    const QString folder = directory.path();
    const QString own = path(u"Hoshiren.mdb"_s);
    const auto answerUpgrade = [&](bool yes) {
        answer(u"登録簿はこのプログラムより古い版です。\n\n%1\n\n控えを作ってから、新しい版に進めますか？\n"
               "進めた登録簿は、前のプログラムでは開けません。"_s.arg(QDir::toNativeSeparators(own)),
               u"Hoshiren"_s, yes);
    };
    EXPECT_TRUE(app::offerUpgrade(folder));
    makeOlder(own, 2);
    answerUpgrade(false);
    EXPECT_FALSE(app::offerUpgrade(folder, olderSteps));
    EXPECT_TRUE(store::isOlder(own));
    EXPECT_TRUE(store::backupsOf(own).empty());

    answerUpgrade(true);
    expect(
        u"登録簿の版 %1 から進める手順がありません。登録簿のファイルか確認して下さい。"_s.arg(store::layoutVersion - 2),
        u"Hoshiren"_s);
    EXPECT_FALSE(app::offerUpgrade(folder, {}));

    answerUpgrade(true);
    expectBeginning(u"登録簿を新しい版に進めました。"_s, u"Hoshiren"_s);
    EXPECT_TRUE(app::offerUpgrade(folder, olderSteps));
    EXPECT_FALSE(store::isOlder(own));
    EXPECT_EQ(store::backupsOf(own).size(), 1);
}

TEST_F(FirstStart, TellsWhenTheFolderCannotBeMade) {
    ASSERT_TRUE(QFile::copy(path(u"Hoshiren.mdb"_s), path(u"書類"_s)));
    answerOffer(true);
    expect(u"フォルダ「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(QDir::toNativeSeparators(folder)),
           u"Hoshiren"_s);
    EXPECT_FALSE(app::offerRegister(folder));
}

} // namespace
