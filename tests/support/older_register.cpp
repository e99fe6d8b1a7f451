#include "support/older_register.h"

#include <array>

const store::UpgradeSteps olderSteps = {
    "-- 年号に終わりの年の欄を加えました。\n"
    "ALTER TABLE tbl_nengo ADD COLUMN tblnen_enen INTEGER NOT NULL DEFAULT 0\n"
    "  CHECK (tblnen_enen BETWEEN -32768 AND 32767)",
    "-- 墓標名の索引を加えました。\n"
    "CREATE INDEX idxhak_bohyomei ON tbl_ohaka (tblhak_bohyo_mei)",
    "-- マスタの表を加えました。\n"
    "CREATE TABLE マスタ (\n"
    "  マ_区分 INTEGER NOT NULL DEFAULT 0 CHECK (マ_区分 BETWEEN -32768 AND 32767),\n"
    "  マ_NO INTEGER NOT NULL DEFAULT 0 CHECK (マ_NO BETWEEN -32768 AND 32767),\n"
    "  マ_名称 TEXT, マ_略称 TEXT) STRICT;\n"
    "CREATE UNIQUE INDEX key_ﾏｽﾀ ON マスタ (マ_区分, マ_NO);\n"
    "INSERT INTO マスタ VALUES (1, 1, '本人', '本人');\n"
    "UPDATE tbl_danka SET tbldnk_bikou = '新しい版' WHERE tbldnk_no1 = 1",
};

void makeOlder(const QString& path, int missing) {
    store::Database database(path);
    const std::array<const char*, 3> undone{"DROP TABLE マスタ", "DROP INDEX idxhak_bohyomei",
                                            "ALTER TABLE tbl_nengo DROP COLUMN tblnen_enen"};
    for (std::size_t i = 0; i < static_cast<std::size_t>(missing); ++i)
        database.engine().exec(undone.at(i));
    database.engine().exec("PRAGMA user_version = " + std::to_string(store::layoutVersion - missing));
}
