-- The register: eight tables, their indexes and the eleven kana-row queries.
-- "Hosh" and the layout version; the program refuses a file that bears others.
PRAGMA application_id = 0x486F7368;
PRAGMA user_version = 1;

CREATE TABLE tbl_danka (
  tbldnk_no1 INTEGER NOT NULL DEFAULT 0 CHECK (tbldnk_no1 BETWEEN -32768 AND 32767),
  tbldnk_no2 INTEGER NOT NULL DEFAULT 0 CHECK (tbldnk_no2 BETWEEN -32768 AND 32767),
  tbldnk_nameg TEXT,
  tbldnk_namek TEXT,
  tbldnk_dnkkbn TEXT,
  tbldnk_yubin TEXT,
  tbldnk_jyusho1 TEXT,
  tbldnk_jyusho2 TEXT,
  tbldnk_tel TEXT,
  tbldnk_fax TEXT,
  tbldnk_chiku TEXT,
  tbldnk_bikou TEXT,
  tbldnk_kanaidx TEXT,
  tbldnk_haka_basho TEXT,
  tbldnk_toshug TEXT,
  tbldnk_toshuk TEXT,
  tbldnk_oyano INTEGER CHECK (tbldnk_oyano BETWEEN -32768 AND 32767),
  tbldnk_bunkekbn TEXT,
  tbldnk_addymd TEXT CHECK (tbldnk_addymd IS date(tbldnk_addymd, '+0 days'))
) STRICT;

CREATE TABLE tbl_kazoku (
  tblkzk_no1 INTEGER NOT NULL DEFAULT 0 CHECK (tblkzk_no1 BETWEEN -32768 AND 32767),
  tblkzk_no2 INTEGER CHECK (tblkzk_no2 BETWEEN -32768 AND 32767),
  tblkzk_dnknameg TEXT NOT NULL DEFAULT '',
  tblkzk_dnknamek TEXT,
  tblkzk_nameg TEXT NOT NULL DEFAULT '',
  tblkzk_namek TEXT,
  tblkzk_sei_gname TEXT,
  tblkzk_sei_gyy INTEGER CHECK (tblkzk_sei_gyy BETWEEN -32768 AND 32767),
  tblkzk_sei_gmm INTEGER CHECK (tblkzk_sei_gmm BETWEEN -32768 AND 32767),
  tblkzk_sei_gdd INTEGER CHECK (tblkzk_sei_gdd BETWEEN -32768 AND 32767),
  tblkzk_sei_ymd TEXT CHECK (tblkzk_sei_ymd IS date(tblkzk_sei_ymd, '+0 days')),
  tblkzk_zokugara TEXT,
  tblkzk_dohkyokbn TEXT,
  tblkzk_seishikbn TEXT,
  tblkzk_yubin TEXT,
  tblkzk_jusho1 TEXT,
  tblkzk_jusho2 TEXT,
  tblkzk_tel TEXT,
  tblkzk_fax TEXT,
  tblkzk_chiku TEXT,
  tblkzk_bikou TEXT,
  tblkzk_kanaidx TEXT,
  tblkzk_add_ymd TEXT CHECK (tblkzk_add_ymd IS date(tblkzk_add_ymd, '+0 days'))
) STRICT;

CREATE TABLE tbl_kakocho (
  tblkak_no INTEGER NOT NULL DEFAULT 0 CHECK (tblkak_no BETWEEN -32768 AND 32767),
  tblkak_dnknameg TEXT NOT NULL DEFAULT '',
  tblkak_dnknamek TEXT,
  tblkak_zokunameg TEXT NOT NULL DEFAULT '',
  tblkak_zokunamek TEXT,
  tblkak_sei_gname TEXT,
  tblkak_sei_gyy INTEGER CHECK (tblkak_sei_gyy BETWEEN -32768 AND 32767),
  tblkak_sei_gmm INTEGER CHECK (tblkak_sei_gmm BETWEEN -32768 AND 32767),
  tblkak_sei_gdd INTEGER CHECK (tblkak_sei_gdd BETWEEN -32768 AND 32767),
  tblkak_sei_ymd TEXT CHECK (tblkak_sei_ymd IS date(tblkak_sei_ymd, '+0 days')),
  tblkak_mei_gname TEXT,
  tblkak_mei_gyy INTEGER CHECK (tblkak_mei_gyy BETWEEN -32768 AND 32767),
  tblkak_mei_gmm INTEGER CHECK (tblkak_mei_gmm BETWEEN -32768 AND 32767),
  tblkak_mei_gdd INTEGER CHECK (tblkak_mei_gdd BETWEEN -32768 AND 32767),
  tblkak_mei_ymd TEXT CHECK (tblkak_mei_ymd IS date(tblkak_mei_ymd, '+0 days')),
  tblkak_kyounen INTEGER CHECK (tblkak_kyounen BETWEEN -32768 AND 32767),
  tblkak_kaimyoug TEXT,
  tblkak_kaimyouk TEXT,
  tblkak_kankeisha TEXT,
  tblkak_zokugara TEXT,
  tblkak_bikou TEXT,
  tblkak_haka_kbn TEXT,
  tblkak_haka_basho TEXT,
  tblkak_haka_no INTEGER CHECK (tblkak_haka_no BETWEEN -32768 AND 32767),
  tblkak_haka_blk1 TEXT,
  tblkak_haka_bch TEXT,
  tblkak_kanaidx TEXT,
  tblkak_add_ymd TEXT CHECK (tblkak_add_ymd IS date(tblkak_add_ymd, '+0 days'))
) STRICT;

CREATE TABLE tbl_ohaka (
  tblhak_no INTEGER NOT NULL DEFAULT 0 CHECK (tblhak_no BETWEEN -32768 AND 32767),
  tblhak_banchi1 TEXT,
  tblhak_banchi2 TEXT,
  tblhak_dnk_no INTEGER NOT NULL DEFAULT 0 CHECK (tblhak_dnk_no BETWEEN -32768 AND 32767),
  tblhak_dnk_kbn TEXT,
  tblhak_dnk_nameg TEXT,
  tblhak_dnk_namek TEXT,
  tblhak_bohyo_kbn TEXT,
  tblhak_bohyo_mei TEXT,
  tblhak_shiyo_stymd TEXT CHECK (tblhak_shiyo_stymd IS date(tblhak_shiyo_stymd, '+0 days')),
  tblhak_shiyo_jrymd TEXT CHECK (tblhak_shiyo_jrymd IS date(tblhak_shiyo_jrymd, '+0 days')),
  tblhak_shiyo_ryokin INTEGER CHECK (tblhak_shiyo_ryokin BETWEEN -2147483648 AND 2147483647),
  tblhak_kanri_ryokin INTEGER CHECK (tblhak_kanri_ryokin BETWEEN -2147483648 AND 2147483647),
  tblhak_kanri_jrymd TEXT CHECK (tblhak_kanri_jrymd IS date(tblhak_kanri_jrymd, '+0 days')),
  tblhak_kanri_nxymd TEXT CHECK (tblhak_kanri_nxymd IS date(tblhak_kanri_nxymd, '+0 days')),
  tblhak_haiki_kbn INTEGER NOT NULL DEFAULT 0 CHECK (tblhak_haiki_kbn BETWEEN -32768 AND 32767),
  tblhak_haiki_ymd TEXT CHECK (tblhak_haiki_ymd IS date(tblhak_haiki_ymd, '+0 days')),
  tblhak_biko TEXT,
  tblhak_kanaidx TEXT,
  tblhak_add_ymd TEXT CHECK (tblhak_add_ymd IS date(tblhak_add_ymd, '+0 days'))
) STRICT;

CREATE TABLE tbl_hohyo (
  tblhoy_no INTEGER NOT NULL DEFAULT 0 CHECK (tblhoy_no BETWEEN -32768 AND 32767),
  tblhoy_danknameg TEXT NOT NULL DEFAULT '',
  tblhoy_danknamek TEXT,
  tblhoy_zokunameg TEXT NOT NULL DEFAULT '',
  tblhoy_zokunamek TEXT,
  tblhoy_kaimyog TEXT,
  tblhoy_kaimyok TEXT,
  tblhoy_meiymd TEXT CHECK (tblhoy_meiymd IS date(tblhoy_meiymd, '+0 days')),
  tblhoy_kaiki_mei TEXT,
  tblhoy_kaiki_s INTEGER NOT NULL DEFAULT 0 CHECK (tblhoy_kaiki_s BETWEEN -32768 AND 32767),
  tblhoy_kaiki_yymd TEXT CHECK (tblhoy_kaiki_yymd IS date(tblhoy_kaiki_yymd, '+0 days')),
  tblhoy_kaiki_rymd TEXT CHECK (tblhoy_kaiki_rymd IS date(tblhoy_kaiki_rymd, '+0 days')),
  tblhoy_kaiki_jymd TEXT CHECK (tblhoy_kaiki_jymd IS date(tblhoy_kaiki_jymd, '+0 days')),
  tblhoy_kaiki_rs INTEGER NOT NULL DEFAULT 0 CHECK (tblhoy_kaiki_rs BETWEEN -32768 AND 32767),
  tblhoy_kaiki_ampm TEXT,
  tblhoy_kaiki_hour INTEGER CHECK (tblhoy_kaiki_hour BETWEEN -32768 AND 32767),
  tblhoy_kaiki_mint INTEGER CHECK (tblhoy_kaiki_mint BETWEEN -32768 AND 32767),
  tblhoy_kaiki_basho TEXT,
  tblhoy_kaiki_seshug TEXT,
  tblhoy_zokugara TEXT,
  tblhoy_tsuchi_s INTEGER NOT NULL DEFAULT 0 CHECK (tblhoy_tsuchi_s BETWEEN -32768 AND 32767),
  tblhoy_tsuchi_ymd TEXT CHECK (tblhoy_tsuchi_ymd IS date(tblhoy_tsuchi_ymd, '+0 days')),
  tblhoy_ofuse INTEGER CHECK (tblhoy_ofuse BETWEEN -2147483648 AND 2147483647),
  tblhoy_bikou TEXT,
  tblhoy_kanaidx TEXT,
  tblhoy_add_ymd TEXT CHECK (tblhoy_add_ymd IS date(tblhoy_add_ymd, '+0 days'))
) STRICT;

CREATE TABLE tbl_nengo (
  tblnen_nengo TEXT NOT NULL DEFAULT '',
  tblnen_snen INTEGER NOT NULL DEFAULT 0 CHECK (tblnen_snen BETWEEN -32768 AND 32767),
  tblnen_enen INTEGER NOT NULL DEFAULT 0 CHECK (tblnen_enen BETWEEN -32768 AND 32767)
) STRICT;

CREATE TABLE tbl_hatsuban (
  tblno_key1 INTEGER NOT NULL DEFAULT 0 CHECK (tblno_key1 BETWEEN -32768 AND 32767),
  tblno_key2 TEXT NOT NULL DEFAULT '',
  tblno_sumino INTEGER NOT NULL DEFAULT 0 CHECK (tblno_sumino BETWEEN -32768 AND 32767),
  tblno_edano INTEGER NOT NULL DEFAULT 0 CHECK (tblno_edano BETWEEN -32768 AND 32767)
) STRICT;

CREATE TABLE マスタ (
  マ_区分 INTEGER NOT NULL DEFAULT 0 CHECK (マ_区分 BETWEEN -32768 AND 32767),
  マ_NO INTEGER NOT NULL DEFAULT 0 CHECK (マ_NO BETWEEN -32768 AND 32767),
  マ_名称 TEXT,
  マ_略称 TEXT
) STRICT;

CREATE UNIQUE INDEX idxdnk_no ON tbl_danka (tbldnk_no1, tbldnk_no2);
CREATE UNIQUE INDEX idxkzk_kazoku ON tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg);
CREATE INDEX idxkzk_no ON tbl_kazoku (tblkzk_no1);
CREATE UNIQUE INDEX idxkak_kakochou ON tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg);
CREATE UNIQUE INDEX idxhak_no ON tbl_ohaka (tblhak_no);
CREATE INDEX idxhak_banchi12 ON tbl_ohaka (tblhak_banchi1, tblhak_banchi2);
CREATE INDEX idxhak_bohyou ON tbl_ohaka (tblhak_dnk_no, tblhak_bohyo_mei);
CREATE INDEX idxhak_kanrinext ON tbl_ohaka (tblhak_kanri_nxymd);
CREATE UNIQUE INDEX idxhoy_hohyo ON tbl_hohyo (tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_yymd);
CREATE INDEX idxhoy_yymd ON tbl_hohyo (tblhoy_kaiki_yymd);
CREATE UNIQUE INDEX idxnen_nengo ON tbl_nengo (tblnen_nengo);
CREATE INDEX idxnen_snen ON tbl_nengo (tblnen_snen);
CREATE UNIQUE INDEX idxno_key ON tbl_hatsuban (tblno_key1, tblno_key2);
CREATE UNIQUE INDEX key_ﾏｽﾀ ON マスタ (マ_区分, マ_NO);

-- A section and lot are not unique: a disposed grave and a live one may share a place.
-- Two helpers, without which the reservation book and the marker picker would read whole tables.
CREATE INDEX idxhoy_rymd ON tbl_hohyo (tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, tblhoy_kaiki_hour)
  WHERE tblhoy_kaiki_rymd IS NOT NULL;
CREATE INDEX idxhak_bohyomei ON tbl_ohaka (tblhak_bohyo_mei);

-- Kana rows: hiragana, katakana and half-width katakana, voiced and small letters included, as code-point ranges.
CREATE VIEW qrydnk_aa AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx BETWEEN 'ぁ' AND 'お' OR tbldnk_kanaidx = 'ゔ' OR tbldnk_kanaidx BETWEEN 'ァ' AND 'オ' OR tbldnk_kanaidx = 'ヴ' OR tbldnk_kanaidx BETWEEN 'ｧ' AND 'ｫ' OR tbldnk_kanaidx BETWEEN 'ｱ' AND 'ｵ'
  ORDER BY tbldnk_namek;
CREATE VIEW qrydnk_ka AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx BETWEEN 'か' AND 'ご' OR tbldnk_kanaidx BETWEEN 'ゕ' AND 'ゖ' OR tbldnk_kanaidx BETWEEN 'カ' AND 'ゴ' OR tbldnk_kanaidx BETWEEN 'ヵ' AND 'ヶ' OR tbldnk_kanaidx BETWEEN 'ｶ' AND 'ｺ'
  ORDER BY tbldnk_namek;
CREATE VIEW qrydnk_sa AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx BETWEEN 'さ' AND 'ぞ' OR tbldnk_kanaidx BETWEEN 'サ' AND 'ゾ' OR tbldnk_kanaidx BETWEEN 'ｻ' AND 'ｿ'
  ORDER BY tbldnk_namek;
CREATE VIEW qrydnk_ta AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx BETWEEN 'た' AND 'ど' OR tbldnk_kanaidx BETWEEN 'タ' AND 'ド' OR tbldnk_kanaidx = 'ｯ' OR tbldnk_kanaidx BETWEEN 'ﾀ' AND 'ﾄ'
  ORDER BY tbldnk_namek;
CREATE VIEW qrydnk_na AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx BETWEEN 'な' AND 'の' OR tbldnk_kanaidx BETWEEN 'ナ' AND 'ノ' OR tbldnk_kanaidx BETWEEN 'ﾅ' AND 'ﾉ'
  ORDER BY tbldnk_namek;
CREATE VIEW qrydnk_ha AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx BETWEEN 'は' AND 'ぽ' OR tbldnk_kanaidx BETWEEN 'ハ' AND 'ポ' OR tbldnk_kanaidx BETWEEN 'ﾊ' AND 'ﾎ'
  ORDER BY tbldnk_namek;
CREATE VIEW qrydnk_ma AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx BETWEEN 'ま' AND 'も' OR tbldnk_kanaidx BETWEEN 'マ' AND 'モ' OR tbldnk_kanaidx BETWEEN 'ﾏ' AND 'ﾓ'
  ORDER BY tbldnk_namek;
CREATE VIEW qrydnk_ya AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx BETWEEN 'ゃ' AND 'よ' OR tbldnk_kanaidx BETWEEN 'ャ' AND 'ヨ' OR tbldnk_kanaidx BETWEEN 'ｬ' AND 'ｮ' OR tbldnk_kanaidx BETWEEN 'ﾔ' AND 'ﾖ'
  ORDER BY tbldnk_namek;
CREATE VIEW ｑｒｙｄｎｋ_ra AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx BETWEEN 'ら' AND 'ろ' OR tbldnk_kanaidx BETWEEN 'ラ' AND 'ロ' OR tbldnk_kanaidx BETWEEN 'ﾗ' AND 'ﾛ'
  ORDER BY tbldnk_namek;
CREATE VIEW qrydnk_wa AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx BETWEEN 'ゎ' AND 'ん' OR tbldnk_kanaidx BETWEEN 'ヮ' AND 'ン' OR tbldnk_kanaidx BETWEEN 'ヷ' AND 'ヺ' OR tbldnk_kanaidx = 'ｦ' OR tbldnk_kanaidx BETWEEN 'ﾜ' AND 'ﾝ'
  ORDER BY tbldnk_namek;
CREATE VIEW qrydnk_hoka AS SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou
  FROM tbl_danka WHERE tbldnk_kanaidx IS NULL OR NOT (tbldnk_kanaidx BETWEEN 'ぁ' AND 'ゖ' OR tbldnk_kanaidx BETWEEN 'ァ' AND 'ヺ' OR tbldnk_kanaidx BETWEEN 'ｦ' AND 'ｯ' OR tbldnk_kanaidx BETWEEN 'ｱ' AND 'ﾝ')
  ORDER BY tbldnk_namek;
