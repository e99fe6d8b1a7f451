#pragma once

#include <QDate>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <tuple>
#include <type_traits>

// The register's tables: a struct a table, its members the fields under their own names. Absent numbers are NULL in the
// file, absent dates an invalid QDate. Numbers are 16-bit, fees and offerings 32-bit yen. Two rows are equal when all
// their fields are; a NULL text equals an empty one.

namespace store {

template <class Row, class T> struct Field {
    const char* name;
    T Row::*member;
};

template <class Row, class T> constexpr Field<Row, T> field(const char* name, T Row::*member) {
    return {name, member};
}

// An index by name with its key fields in order.
template <class Row, class... Keys> struct Index {
    const char* name;
    std::tuple<Field<Row, Keys>...> fields;
};

template <class Row, class... Keys> constexpr Index<Row, Keys...> index(const char* name, Field<Row, Keys>... fields) {
    return {name, std::tuple<Field<Row, Keys>...>(fields...)};
}

// Specialised for every row type: the table's name and its fields.
template <class Row> struct Description;

#define HOSHIREN_FIELD(row, name) ::store::field<row>(#name, &row::name)

struct tbl_danka {
    std::int16_t tbldnk_no1 = 0;
    std::int16_t tbldnk_no2 = 0;
    QString tbldnk_nameg;
    QString tbldnk_namek;
    QString tbldnk_dnkkbn;
    QString tbldnk_yubin;
    QString tbldnk_jyusho1;
    QString tbldnk_jyusho2;
    QString tbldnk_tel;
    QString tbldnk_fax;
    QString tbldnk_chiku;
    QString tbldnk_bikou;
    QString tbldnk_kanaidx;
    QString tbldnk_haka_basho;
    QString tbldnk_toshug;
    QString tbldnk_toshuk;
    std::optional<std::int16_t> tbldnk_oyano;
    QString tbldnk_bunkekbn;
    QDate tbldnk_addymd;

    bool operator==(const tbl_danka&) const = default;
};

template <> struct Description<tbl_danka> {
    static constexpr const char* table = "tbl_danka";
    static constexpr auto fields =
        std::make_tuple(HOSHIREN_FIELD(tbl_danka, tbldnk_no1), HOSHIREN_FIELD(tbl_danka, tbldnk_no2),
                        HOSHIREN_FIELD(tbl_danka, tbldnk_nameg), HOSHIREN_FIELD(tbl_danka, tbldnk_namek),
                        HOSHIREN_FIELD(tbl_danka, tbldnk_dnkkbn), HOSHIREN_FIELD(tbl_danka, tbldnk_yubin),
                        HOSHIREN_FIELD(tbl_danka, tbldnk_jyusho1), HOSHIREN_FIELD(tbl_danka, tbldnk_jyusho2),
                        HOSHIREN_FIELD(tbl_danka, tbldnk_tel), HOSHIREN_FIELD(tbl_danka, tbldnk_fax),
                        HOSHIREN_FIELD(tbl_danka, tbldnk_chiku), HOSHIREN_FIELD(tbl_danka, tbldnk_bikou),
                        HOSHIREN_FIELD(tbl_danka, tbldnk_kanaidx), HOSHIREN_FIELD(tbl_danka, tbldnk_haka_basho),
                        HOSHIREN_FIELD(tbl_danka, tbldnk_toshug), HOSHIREN_FIELD(tbl_danka, tbldnk_toshuk),
                        HOSHIREN_FIELD(tbl_danka, tbldnk_oyano), HOSHIREN_FIELD(tbl_danka, tbldnk_bunkekbn),
                        HOSHIREN_FIELD(tbl_danka, tbldnk_addymd));
};

struct tbl_kazoku {
    std::int16_t tblkzk_no1 = 0;
    std::optional<std::int16_t> tblkzk_no2;
    QString tblkzk_dnknameg;
    QString tblkzk_dnknamek;
    QString tblkzk_nameg;
    QString tblkzk_namek;
    QString tblkzk_sei_gname;
    std::optional<std::int16_t> tblkzk_sei_gyy;
    std::optional<std::int16_t> tblkzk_sei_gmm;
    std::optional<std::int16_t> tblkzk_sei_gdd;
    QDate tblkzk_sei_ymd;
    QString tblkzk_zokugara;
    QString tblkzk_dohkyokbn;
    QString tblkzk_seishikbn;
    QString tblkzk_yubin;
    QString tblkzk_jusho1;
    QString tblkzk_jusho2;
    QString tblkzk_tel;
    QString tblkzk_fax;
    QString tblkzk_chiku;
    QString tblkzk_bikou;
    QString tblkzk_kanaidx;
    QDate tblkzk_add_ymd;

    bool operator==(const tbl_kazoku&) const = default;
};

template <> struct Description<tbl_kazoku> {
    static constexpr const char* table = "tbl_kazoku";
    static constexpr auto fields =
        std::make_tuple(HOSHIREN_FIELD(tbl_kazoku, tblkzk_no1), HOSHIREN_FIELD(tbl_kazoku, tblkzk_no2),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_dnknameg), HOSHIREN_FIELD(tbl_kazoku, tblkzk_dnknamek),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_nameg), HOSHIREN_FIELD(tbl_kazoku, tblkzk_namek),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_sei_gname), HOSHIREN_FIELD(tbl_kazoku, tblkzk_sei_gyy),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_sei_gmm), HOSHIREN_FIELD(tbl_kazoku, tblkzk_sei_gdd),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_sei_ymd), HOSHIREN_FIELD(tbl_kazoku, tblkzk_zokugara),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_dohkyokbn), HOSHIREN_FIELD(tbl_kazoku, tblkzk_seishikbn),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_yubin), HOSHIREN_FIELD(tbl_kazoku, tblkzk_jusho1),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_jusho2), HOSHIREN_FIELD(tbl_kazoku, tblkzk_tel),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_fax), HOSHIREN_FIELD(tbl_kazoku, tblkzk_chiku),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_bikou), HOSHIREN_FIELD(tbl_kazoku, tblkzk_kanaidx),
                        HOSHIREN_FIELD(tbl_kazoku, tblkzk_add_ymd));
};

struct tbl_kakocho {
    std::int16_t tblkak_no = 0;
    QString tblkak_dnknameg;
    QString tblkak_dnknamek;
    QString tblkak_zokunameg;
    QString tblkak_zokunamek;
    QString tblkak_sei_gname;
    std::optional<std::int16_t> tblkak_sei_gyy;
    std::optional<std::int16_t> tblkak_sei_gmm;
    std::optional<std::int16_t> tblkak_sei_gdd;
    QDate tblkak_sei_ymd;
    QString tblkak_mei_gname;
    std::optional<std::int16_t> tblkak_mei_gyy;
    std::optional<std::int16_t> tblkak_mei_gmm;
    std::optional<std::int16_t> tblkak_mei_gdd;
    QDate tblkak_mei_ymd;
    std::optional<std::int16_t> tblkak_kyounen;
    QString tblkak_kaimyoug;
    QString tblkak_kaimyouk;
    QString tblkak_kankeisha;
    QString tblkak_zokugara;
    QString tblkak_bikou;
    QString tblkak_haka_kbn;
    QString tblkak_haka_basho;
    std::optional<std::int16_t> tblkak_haka_no;
    QString tblkak_haka_blk1;
    QString tblkak_haka_bch;
    QString tblkak_kanaidx;
    QDate tblkak_add_ymd;

    bool operator==(const tbl_kakocho&) const = default;
};

template <> struct Description<tbl_kakocho> {
    static constexpr const char* table = "tbl_kakocho";
    static constexpr auto fields =
        std::make_tuple(HOSHIREN_FIELD(tbl_kakocho, tblkak_no), HOSHIREN_FIELD(tbl_kakocho, tblkak_dnknameg),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_dnknamek), HOSHIREN_FIELD(tbl_kakocho, tblkak_zokunameg),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_zokunamek), HOSHIREN_FIELD(tbl_kakocho, tblkak_sei_gname),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_sei_gyy), HOSHIREN_FIELD(tbl_kakocho, tblkak_sei_gmm),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_sei_gdd), HOSHIREN_FIELD(tbl_kakocho, tblkak_sei_ymd),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_mei_gname), HOSHIREN_FIELD(tbl_kakocho, tblkak_mei_gyy),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_mei_gmm), HOSHIREN_FIELD(tbl_kakocho, tblkak_mei_gdd),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_mei_ymd), HOSHIREN_FIELD(tbl_kakocho, tblkak_kyounen),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_kaimyoug), HOSHIREN_FIELD(tbl_kakocho, tblkak_kaimyouk),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_kankeisha), HOSHIREN_FIELD(tbl_kakocho, tblkak_zokugara),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_bikou), HOSHIREN_FIELD(tbl_kakocho, tblkak_haka_kbn),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_haka_basho), HOSHIREN_FIELD(tbl_kakocho, tblkak_haka_no),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_haka_blk1), HOSHIREN_FIELD(tbl_kakocho, tblkak_haka_bch),
                        HOSHIREN_FIELD(tbl_kakocho, tblkak_kanaidx), HOSHIREN_FIELD(tbl_kakocho, tblkak_add_ymd));
};

struct tbl_ohaka {
    std::int16_t tblhak_no = 0;
    QString tblhak_banchi1;
    QString tblhak_banchi2;
    std::int16_t tblhak_dnk_no = 0;
    QString tblhak_dnk_kbn;
    QString tblhak_dnk_nameg;
    QString tblhak_dnk_namek;
    QString tblhak_bohyo_kbn;
    QString tblhak_bohyo_mei;
    QDate tblhak_shiyo_stymd;
    QDate tblhak_shiyo_jrymd;
    std::optional<std::int32_t> tblhak_shiyo_ryokin;
    std::optional<std::int32_t> tblhak_kanri_ryokin;
    QDate tblhak_kanri_jrymd;
    QDate tblhak_kanri_nxymd;
    std::int16_t tblhak_haiki_kbn = 0;
    QDate tblhak_haiki_ymd;
    QString tblhak_biko;
    QString tblhak_kanaidx;
    QDate tblhak_add_ymd;

    bool operator==(const tbl_ohaka&) const = default;
};

template <> struct Description<tbl_ohaka> {
    static constexpr const char* table = "tbl_ohaka";
    static constexpr auto fields =
        std::make_tuple(HOSHIREN_FIELD(tbl_ohaka, tblhak_no), HOSHIREN_FIELD(tbl_ohaka, tblhak_banchi1),
                        HOSHIREN_FIELD(tbl_ohaka, tblhak_banchi2), HOSHIREN_FIELD(tbl_ohaka, tblhak_dnk_no),
                        HOSHIREN_FIELD(tbl_ohaka, tblhak_dnk_kbn), HOSHIREN_FIELD(tbl_ohaka, tblhak_dnk_nameg),
                        HOSHIREN_FIELD(tbl_ohaka, tblhak_dnk_namek), HOSHIREN_FIELD(tbl_ohaka, tblhak_bohyo_kbn),
                        HOSHIREN_FIELD(tbl_ohaka, tblhak_bohyo_mei), HOSHIREN_FIELD(tbl_ohaka, tblhak_shiyo_stymd),
                        HOSHIREN_FIELD(tbl_ohaka, tblhak_shiyo_jrymd), HOSHIREN_FIELD(tbl_ohaka, tblhak_shiyo_ryokin),
                        HOSHIREN_FIELD(tbl_ohaka, tblhak_kanri_ryokin), HOSHIREN_FIELD(tbl_ohaka, tblhak_kanri_jrymd),
                        HOSHIREN_FIELD(tbl_ohaka, tblhak_kanri_nxymd), HOSHIREN_FIELD(tbl_ohaka, tblhak_haiki_kbn),
                        HOSHIREN_FIELD(tbl_ohaka, tblhak_haiki_ymd), HOSHIREN_FIELD(tbl_ohaka, tblhak_biko),
                        HOSHIREN_FIELD(tbl_ohaka, tblhak_kanaidx), HOSHIREN_FIELD(tbl_ohaka, tblhak_add_ymd));
};

struct tbl_hohyo {
    std::int16_t tblhoy_no = 0;
    QString tblhoy_danknameg;
    QString tblhoy_danknamek;
    QString tblhoy_zokunameg;
    QString tblhoy_zokunamek;
    QString tblhoy_kaimyog;
    QString tblhoy_kaimyok;
    QDate tblhoy_meiymd;
    QString tblhoy_kaiki_mei;
    std::int16_t tblhoy_kaiki_s = 0;
    QDate tblhoy_kaiki_yymd;
    QDate tblhoy_kaiki_rymd;
    QDate tblhoy_kaiki_jymd;
    std::int16_t tblhoy_kaiki_rs = 0;
    QString tblhoy_kaiki_ampm;
    std::optional<std::int16_t> tblhoy_kaiki_hour;
    std::optional<std::int16_t> tblhoy_kaiki_mint;
    QString tblhoy_kaiki_basho;
    QString tblhoy_kaiki_seshug;
    QString tblhoy_zokugara;
    std::int16_t tblhoy_tsuchi_s = 0;
    QDate tblhoy_tsuchi_ymd;
    std::optional<std::int32_t> tblhoy_ofuse;
    QString tblhoy_bikou;
    QString tblhoy_kanaidx;
    QDate tblhoy_add_ymd;

    bool operator==(const tbl_hohyo&) const = default;
};

template <> struct Description<tbl_hohyo> {
    static constexpr const char* table = "tbl_hohyo";
    static constexpr auto fields =
        std::make_tuple(HOSHIREN_FIELD(tbl_hohyo, tblhoy_no), HOSHIREN_FIELD(tbl_hohyo, tblhoy_danknameg),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_danknamek), HOSHIREN_FIELD(tbl_hohyo, tblhoy_zokunameg),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_zokunamek), HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaimyog),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaimyok), HOSHIREN_FIELD(tbl_hohyo, tblhoy_meiymd),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_mei), HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_s),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_yymd), HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_rymd),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_jymd), HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_rs),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_ampm), HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_hour),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_mint), HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_basho),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_seshug), HOSHIREN_FIELD(tbl_hohyo, tblhoy_zokugara),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_tsuchi_s), HOSHIREN_FIELD(tbl_hohyo, tblhoy_tsuchi_ymd),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_ofuse), HOSHIREN_FIELD(tbl_hohyo, tblhoy_bikou),
                        HOSHIREN_FIELD(tbl_hohyo, tblhoy_kanaidx), HOSHIREN_FIELD(tbl_hohyo, tblhoy_add_ymd));
};

struct tbl_nengo {
    QString tblnen_nengo;
    std::int16_t tblnen_snen = 0;
    std::int16_t tblnen_enen = 0;

    bool operator==(const tbl_nengo&) const = default;
};

template <> struct Description<tbl_nengo> {
    static constexpr const char* table = "tbl_nengo";
    static constexpr auto fields =
        std::make_tuple(HOSHIREN_FIELD(tbl_nengo, tblnen_nengo), HOSHIREN_FIELD(tbl_nengo, tblnen_snen),
                        HOSHIREN_FIELD(tbl_nengo, tblnen_enen));
};

struct tbl_hatsuban {
    std::int16_t tblno_key1 = 0;
    QString tblno_key2;
    std::int16_t tblno_sumino = 0;
    std::int16_t tblno_edano = 0;

    bool operator==(const tbl_hatsuban&) const = default;
};

template <> struct Description<tbl_hatsuban> {
    static constexpr const char* table = "tbl_hatsuban";
    static constexpr auto fields =
        std::make_tuple(HOSHIREN_FIELD(tbl_hatsuban, tblno_key1), HOSHIREN_FIELD(tbl_hatsuban, tblno_key2),
                        HOSHIREN_FIELD(tbl_hatsuban, tblno_sumino), HOSHIREN_FIELD(tbl_hatsuban, tblno_edano));
};

struct マスタ {
    std::int16_t マ_区分 = 0;
    std::int16_t マ_NO = 0;
    QString マ_名称;
    QString マ_略称;

    bool operator==(const マスタ&) const = default;
};

template <> struct Description<マスタ> {
    static constexpr const char* table = "マスタ";
    static constexpr auto fields = std::make_tuple(HOSHIREN_FIELD(マスタ, マ_区分), HOSHIREN_FIELD(マスタ, マ_NO),
                                                   HOSHIREN_FIELD(マスタ, マ_名称), HOSHIREN_FIELD(マスタ, マ_略称));
};

// Calls each.operator()<Row>() for every table.
template <class Each> void forEachTable(Each each) {
    [&]<class... Row>(std::type_identity<std::tuple<Row...>>) {
        (each.template operator()<Row>(), ...);
    }(std::type_identity<
        std::tuple<tbl_danka, tbl_kazoku, tbl_kakocho, tbl_ohaka, tbl_hohyo, tbl_nengo, tbl_hatsuban, マスタ>>{});
}

// Helpers idxhoy_rymd and idxhak_bohyomei serve selections and are not sought by name.
inline constexpr auto idxdnk_no =
    index("idxdnk_no", HOSHIREN_FIELD(tbl_danka, tbldnk_no1), HOSHIREN_FIELD(tbl_danka, tbldnk_no2));
inline constexpr auto idxkzk_kazoku =
    index("idxkzk_kazoku", HOSHIREN_FIELD(tbl_kazoku, tblkzk_no1), HOSHIREN_FIELD(tbl_kazoku, tblkzk_dnknameg),
          HOSHIREN_FIELD(tbl_kazoku, tblkzk_nameg));
inline constexpr auto idxkzk_no = index("idxkzk_no", HOSHIREN_FIELD(tbl_kazoku, tblkzk_no1));
inline constexpr auto idxkak_kakochou =
    index("idxkak_kakochou", HOSHIREN_FIELD(tbl_kakocho, tblkak_no), HOSHIREN_FIELD(tbl_kakocho, tblkak_dnknameg),
          HOSHIREN_FIELD(tbl_kakocho, tblkak_zokunameg));
inline constexpr auto idxhak_no = index("idxhak_no", HOSHIREN_FIELD(tbl_ohaka, tblhak_no));
inline constexpr auto idxhak_banchi12 =
    index("idxhak_banchi12", HOSHIREN_FIELD(tbl_ohaka, tblhak_banchi1), HOSHIREN_FIELD(tbl_ohaka, tblhak_banchi2));
inline constexpr auto idxhak_bohyou =
    index("idxhak_bohyou", HOSHIREN_FIELD(tbl_ohaka, tblhak_dnk_no), HOSHIREN_FIELD(tbl_ohaka, tblhak_bohyo_mei));
inline constexpr auto idxhak_kanrinext = index("idxhak_kanrinext", HOSHIREN_FIELD(tbl_ohaka, tblhak_kanri_nxymd));
inline constexpr auto idxhoy_hohyo =
    index("idxhoy_hohyo", HOSHIREN_FIELD(tbl_hohyo, tblhoy_no), HOSHIREN_FIELD(tbl_hohyo, tblhoy_zokunameg),
          HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_yymd));
inline constexpr auto idxhoy_yymd = index("idxhoy_yymd", HOSHIREN_FIELD(tbl_hohyo, tblhoy_kaiki_yymd));
inline constexpr auto idxnen_nengo = index("idxnen_nengo", HOSHIREN_FIELD(tbl_nengo, tblnen_nengo));
inline constexpr auto idxnen_snen = index("idxnen_snen", HOSHIREN_FIELD(tbl_nengo, tblnen_snen));
inline constexpr auto idxno_key =
    index("idxno_key", HOSHIREN_FIELD(tbl_hatsuban, tblno_key1), HOSHIREN_FIELD(tbl_hatsuban, tblno_key2));
inline constexpr auto key_マスタ = index("key_ﾏｽﾀ", HOSHIREN_FIELD(マスタ, マ_区分), HOSHIREN_FIELD(マスタ, マ_NO));

// The index whose fields name one row of a table.
template <class Row> inline constexpr std::nullptr_t keyIndex = nullptr;
template <> inline constexpr auto keyIndex<tbl_danka> = idxdnk_no;
template <> inline constexpr auto keyIndex<tbl_kazoku> = idxkzk_kazoku;
template <> inline constexpr auto keyIndex<tbl_kakocho> = idxkak_kakochou;
template <> inline constexpr auto keyIndex<tbl_ohaka> = idxhak_no;
template <> inline constexpr auto keyIndex<tbl_hohyo> = idxhoy_hohyo;
template <> inline constexpr auto keyIndex<tbl_nengo> = idxnen_nengo;
template <> inline constexpr auto keyIndex<マスタ> = key_マスタ;

#undef HOSHIREN_FIELD

} // namespace store
