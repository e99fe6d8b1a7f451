#include "sample/people.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace sample {

namespace {

struct Word {
    const char16_t* kanji;
    const char16_t* kana;

    operator Name() const { return {QString::fromUtf16(kanji), QString::fromUtf16(kana)}; }
};

// Common names, several of them in the older forms that a register has to keep apart.
constexpr Word familyNames[] = {
    {u"佐藤", u"サトウ"},   {u"鈴木", u"スズキ"},   {u"高橋", u"タカハシ"},   {u"髙橋", u"タカハシ"},
    {u"田中", u"タナカ"},   {u"伊藤", u"イトウ"},   {u"渡辺", u"ワタナベ"},   {u"渡邊", u"ワタナベ"},
    {u"山本", u"ヤマモト"}, {u"中村", u"ナカムラ"}, {u"小林", u"コバヤシ"},   {u"加藤", u"カトウ"},
    {u"吉田", u"ヨシダ"},   {u"山田", u"ヤマダ"},   {u"佐々木", u"ササキ"},   {u"山口", u"ヤマグチ"},
    {u"松本", u"マツモト"}, {u"井上", u"イノウエ"}, {u"木村", u"キムラ"},     {u"林", u"ハヤシ"},
    {u"斎藤", u"サイトウ"}, {u"齋藤", u"サイトウ"}, {u"清水", u"シミズ"},     {u"山崎", u"ヤマザキ"},
    {u"山﨑", u"ヤマザキ"}, {u"森", u"モリ"},       {u"池田", u"イケダ"},     {u"橋本", u"ハシモト"},
    {u"阿部", u"アベ"},     {u"石川", u"イシカワ"}, {u"石井", u"イシイ"},     {u"小川", u"オガワ"},
    {u"前田", u"マエダ"},   {u"岡田", u"オカダ"},   {u"長谷川", u"ハセガワ"}, {u"藤田", u"フジタ"},
    {u"後藤", u"ゴトウ"},   {u"近藤", u"コンドウ"}, {u"村上", u"ムラカミ"},   {u"遠藤", u"エンドウ"},
    {u"青木", u"アオキ"},   {u"坂本", u"サカモト"}, {u"福田", u"フクダ"},     {u"太田", u"オオタ"},
    {u"西村", u"ニシムラ"}, {u"藤井", u"フジイ"},   {u"金子", u"カネコ"},     {u"岡本", u"オカモト"},
    {u"藤原", u"フジワラ"}, {u"三浦", u"ミウラ"},   {u"中野", u"ナカノ"},     {u"原田", u"ハラダ"},
    {u"松田", u"マツダ"},   {u"竹内", u"タケウチ"}, {u"小野", u"オノ"},       {u"田村", u"タムラ"},
    {u"中山", u"ナカヤマ"}, {u"和田", u"ワダ"},     {u"石田", u"イシダ"},     {u"森田", u"モリタ"},
    {u"上田", u"ウエダ"},   {u"原", u"ハラ"},       {u"内田", u"ウチダ"},     {u"柴田", u"シバタ"},
    {u"酒井", u"サカイ"},   {u"宮崎", u"ミヤザキ"}, {u"横山", u"ヨコヤマ"},   {u"高木", u"タカギ"},
    {u"安藤", u"アンドウ"}, {u"大野", u"オオノ"},   {u"谷口", u"タニグチ"},   {u"丸山", u"マルヤマ"},
    {u"今井", u"イマイ"},   {u"武田", u"タケダ"},   {u"神谷", u"カミヤ"},     {u"根本", u"ネモト"},
    {u"野村", u"ノムラ"},   {u"沼田", u"ヌマタ"},   {u"力石", u"リキイシ"},   {u"若林", u"ワカバヤシ"},
    {u"鷲尾", u"ワシオ"},   {u"六車", u"ムグルマ"}, {u"流石", u"サスガ"},     {u"ゑびす屋", u"ヱビスヤ"},
};

constexpr Word men[] = {
    {u"一郎", u"イチロウ"}, {u"二郎", u"ジロウ"},   {u"三郎", u"サブロウ"}, {u"正", u"タダシ"},
    {u"清", u"キヨシ"},     {u"実", u"ミノル"},     {u"勇", u"イサム"},     {u"茂", u"シゲル"},
    {u"博", u"ヒロシ"},     {u"隆", u"タカシ"},     {u"豊", u"ユタカ"},     {u"進", u"ススム"},
    {u"勝", u"マサル"},     {u"弘", u"ヒロム"},     {u"修", u"オサム"},     {u"誠", u"マコト"},
    {u"健一", u"ケンイチ"}, {u"和夫", u"カズオ"},   {u"正雄", u"マサオ"},   {u"義雄", u"ヨシオ"},
    {u"幸男", u"ユキオ"},   {u"達也", u"タツヤ"},   {u"哲也", u"テツヤ"},   {u"直樹", u"ナオキ"},
    {u"大輔", u"ダイスケ"}, {u"翔太", u"ショウタ"}, {u"健太", u"ケンタ"},   {u"蓮", u"レン"},
    {u"悠斗", u"ユウト"},   {u"源治", u"ゲンジ"},   {u"善吉", u"ゼンキチ"}, {u"与一", u"ヨイチ"},
    {u"久", u"ヒサシ"},     {u"明", u"アキラ"},     {u"昭", u"アキオ"},
};

constexpr Word women[] = {
    {u"和子", u"カズコ"},   {u"幸子", u"サチコ"},   {u"節子", u"セツコ"}, {u"洋子", u"ヨウコ"},
    {u"弘子", u"ヒロコ"},   {u"美智子", u"ミチコ"}, {u"文子", u"フミコ"}, {u"千代", u"チヨ"},
    {u"千代子", u"チヨコ"}, {u"トメ", u"トメ"},     {u"ハナ", u"ハナ"},   {u"キヨ", u"キヨ"},
    {u"美代", u"ミヨ"},     {u"静江", u"シズエ"},   {u"久子", u"ヒサコ"}, {u"恵子", u"ケイコ"},
    {u"京子", u"キョウコ"}, {u"由美子", u"ユミコ"}, {u"明美", u"アケミ"}, {u"真由美", u"マユミ"},
    {u"直美", u"ナオミ"},   {u"陽子", u"ハルコ"},   {u"智子", u"トモコ"}, {u"裕子", u"ユウコ"},
    {u"愛", u"アイ"},       {u"美咲", u"ミサキ"},   {u"彩", u"アヤ"},     {u"葵", u"アオイ"},
    {u"結衣", u"ユイ"},     {u"ゑい", u"エイ"},     {u"スミ", u"スミ"},   {u"梅", u"ウメ"},
    {u"松枝", u"マツエ"},   {u"貞子", u"サダコ"},   {u"春江", u"ハルエ"},
};

constexpr Word pious[] = {
    {u"慈", u"ジ"},   {u"光", u"コウ"},   {u"浄", u"ジョウ"}, {u"徳", u"トク"}, {u"雲", u"ウン"}, {u"真", u"シン"},
    {u"月", u"ゲツ"}, {u"明", u"ミョウ"}, {u"心", u"シン"},   {u"蓮", u"レン"}, {u"寿", u"ジュ"}, {u"翁", u"オウ"},
    {u"覚", u"カク"}, {u"道", u"ドウ"},   {u"雪", u"セツ"},   {u"泉", u"セン"}, {u"法", u"ホウ"}, {u"照", u"ショウ"},
    {u"禅", u"ゼン"}, {u"円", u"エン"},   {u"岳", u"ガク"},   {u"海", u"カイ"}, {u"玄", u"ゲン"}, {u"春", u"シュン"},
};

constexpr const char16_t* towns[] = {u"川端", u"新田", u"寺前", u"山手", u"西町", u"中之島",
                                     u"本町", u"上町", u"下町", u"東町", u"南町", u"港町"};

Name operator+(const Name& left, const Name& right) {
    return {left.kanji + right.kanji, left.kana + right.kana};
}

} // namespace

Name familyName(Chance& chance) {
    return chance.of(familyNames);
}

Name givenName(Chance& chance, bool woman, std::set<QString>& taken) {
    for (;;) {
        Name name = woman ? chance.of(women) : chance.of(men);
        if (taken.insert(name.kanji).second)
            return name;
    }
}

Name posthumousName(Chance& chance, bool woman) {
    const auto pair = [&chance] {
        const Name first = chance.of(pious);
        return first + chance.of(pious);
    };
    const bool hall = chance.percent(40);
    const Name rank = hall ? (woman ? Name{u"大姉"_s, u"ダイシ"_s} : Name{u"居士"_s, u"コジ"_s})
                           : (woman ? Name{u"信女"_s, u"シンニョ"_s} : Name{u"信士"_s, u"シンジ"_s});
    Name name = pair();
    if (hall)
        name = name + Name{u"院"_s, u"イン"_s} + pair();
    name = name + pair();
    return name + rank;
}

Address address(Chance& chance) {
    const QString town = QString::fromUtf16(chance.of(towns));
    Address made;
    made.postalCode = u"%1-%2"_s.arg(chance.between(300, 399)).arg(chance.below(10000), 4, 10, QChar(u'0'));
    made.line1 =
        u"%1%2丁目%3-%4"_s.arg(town).arg(chance.between(1, 5)).arg(chance.between(1, 30)).arg(chance.between(1, 20));
    if (chance.percent(15))
        made.line2 = u"コーポ%1 %2号"_s.arg(town).arg(chance.between(101, 420));
    made.telephone = u"0%1-%2-%3"_s.arg(chance.between(20, 99))
                         .arg(chance.between(200, 999))
                         .arg(chance.below(10000), 4, 10, QChar(u'0'));
    made.district = town + u"地区"_s;
    return made;
}

QStringList districts() {
    QStringList all;
    for (const char16_t* town : towns)
        all += QString::fromUtf16(town) + u"地区"_s;
    return all;
}

} // namespace sample
