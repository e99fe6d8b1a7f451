#include "store/selections.h"

#include "store/row_rules.h"

namespace store {

std::string householdCountSql() {
    return "SELECT count(*) FROM tbl_danka WHERE tbldnk_no2 = " + literal(codes::mainHousehold);
}

std::vector<tbl_kazoku> familyOf(Database& database, std::int16_t no1) {
    return selectAll<tbl_kazoku>(database,
                                 "WHERE tbl_kazoku.tblkzk_no1 = ? "
                                 "ORDER BY tbl_kazoku.tblkzk_sei_ymd ASC, tbl_kazoku.tblkzk_nameg ASC;",
                                 no1);
}

std::vector<tbl_kakocho> deathRegisterOf(Database& database, std::int16_t no1) {
    return selectAll<tbl_kakocho>(database,
                                  "WHERE tbl_kakocho.tblkak_no = ? "
                                  "ORDER BY tbl_kakocho.tblkak_mei_ymd ASC, tbl_kakocho.tblkak_zokunameg ASC;",
                                  no1);
}

std::vector<tbl_ohaka> gravesOf(Database& database, std::int16_t no1) {
    return selectAll<tbl_ohaka>(database, "WHERE tbl_ohaka.tblhak_dnk_no = ? ORDER BY tbl_ohaka.tblhak_bohyo_mei ASC;",
                                no1);
}

} // namespace store
