#include "support/screen_fixture.h"

#include "app/first_start.h"
#include "store/database.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

class FirstStart : public ScreenFixture {
  protected:
    const QString folder = path(u"書類/Hoshiren"_s);
    const QString file = folder + u"/Hoshiren.mdb"_s;
    const QString question =
        u"登録簿がまだありません。\n\n%1\n\nここに空の登録簿を新しく作りますか？\n"
        "控えから元に戻すときや、登録簿を別の場所に置いているときは「いいえ」を選んで下さい。"_s.arg(
            QDir::toNativeSeparators(file));
};

TEST_F(FirstStart, MakesARegisterOnlyWhenItIsWanted) {
    answer(question, u"Hoshiren"_s, false);
    EXPECT_FALSE(app::offerRegister(folder));
    EXPECT_FALSE(QFileInfo::exists(folder));

    answer(question, u"Hoshiren"_s, true);
    EXPECT_TRUE(app::offerRegister(folder));
    EXPECT_NO_THROW(store::Database{file});
    EXPECT_EQ(QFile::permissions(file) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST_F(FirstStart, LeavesWhatIsThereAlone) {
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile foreign(file);
    ASSERT_TRUE(foreign.open(QIODevice::WriteOnly));
    foreign.write("not a register");
    foreign.close();
    EXPECT_TRUE(app::offerRegister(folder)) << "the program itself tells what is wrong with it";
    EXPECT_EQ(foreign.size(), 14);
}

TEST_F(FirstStart, TellsWhenTheFolderCannotBeMade) {
    QFile inTheWay(path(u"書類"_s));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    answer(question, u"Hoshiren"_s, true);
    expect(u"フォルダ「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(QDir::toNativeSeparators(folder)),
           u"Hoshiren"_s);
    EXPECT_FALSE(app::offerRegister(folder));
}

} // namespace
