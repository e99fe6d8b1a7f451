#include "support/screen_fixture.h"

#include "app/first_start.h"
#include "store/database.h"

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

TEST_F(FirstStart, TellsWhenTheFolderCannotBeMade) {
    ASSERT_TRUE(QFile::copy(path(u"Hoshiren.mdb"_s), path(u"書類"_s)));
    answerOffer(true);
    expect(u"フォルダ「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(QDir::toNativeSeparators(folder)),
           u"Hoshiren"_s);
    EXPECT_FALSE(app::offerRegister(folder));
}

} // namespace
