-- Views of udx's rows, for `udx-case` and the recipes. They read the tables of tables.sql, in which
-- dates have their default form.

-- Each row with the kind of index that it is from, who used it, the address alone, and when it was
-- last seen: the access, but for a weekly history, whose access is when that index was made.
DROP VIEW IF EXISTS entries;
CREATE VIEW entries AS
WITH
  split AS (
    SELECT rowid AS row, *, url GLOB ':[0-9]*: *' AS dated,
      CASE WHEN url GLOB 'Visited: *@*' OR url GLOB 'Cookie:*@*' OR url GLOB ':[0-9]*: *@*'
        THEN ltrim(substr(url, instr(substr(url, 2), ':') + 2)) END AS named,
      -- A daily or weekly history puts two days ahead: its first, and the first after it.
      substr(url, 2, 4) || '-' || substr(url, 6, 2) || '-' || substr(url, 8, 2) AS begin,
      substr(url, 10, 4) || '-' || substr(url, 14, 2) || '-' || substr(url, 16, 2) AS after
    FROM cells),
  told AS (
    SELECT *,
      CASE
        WHEN type <> 'URL ' THEN trim(type)
        WHEN url GLOB 'Visited: *@*' THEN 'main history'
        WHEN url GLOB 'Cookie:*@*' THEN 'cookie'
        WHEN named <> '' AND julianday(after) - julianday(begin) = 1 THEN 'daily history'
        WHEN named <> '' THEN 'weekly history'
        WHEN url GLOB '*://*' THEN 'cache'
        ELSE 'other' END AS kind,
      -- A history can hold "-" as its account; a cache row of two "-" has none that is told.
      CASE
        WHEN named <> '' THEN substr(named, 1, instr(named, '@') - 1)
        WHEN user <> '-' OR header <> '-' THEN user
        ELSE '' END AS who,
      coalesce(substr(named, instr(named, '@') + 1), url) AS address
    FROM split)
SELECT *, CASE
    WHEN kind <> 'weekly history' THEN trim(access_date || ' ' || access_time)
    WHEN mod_date <> '' THEN mod_date || ' ' || rtrim(mod_time, ' UTClocal') || ' local'
    ELSE '' END AS seen
FROM told;

-- Whom the rows name, in which kind of index, in how many rows, from when to when. Each row counts:
-- those that name nobody stand below an empty name.
DROP VIEW IF EXISTS users;
CREATE VIEW users AS
SELECT who, kind, count(*) AS rows, min(nullif(seen, '')) AS first, max(seen) AS last
FROM entries GROUP BY who, kind;

-- What each input holds.
DROP VIEW IF EXISTS sources;
CREATE VIEW sources AS
SELECT source, kind, count(*) AS rows, min(nullif(seen, '')) AS first, max(seen) AS last
FROM entries GROUP BY source, kind;

-- How often a user visited a page. The other histories count the same visits as the main one, and a
-- copy or an older state of a record counts no more than the record itself: neither is added.
DROP VIEW IF EXISTS visits;
CREATE VIEW visits AS
WITH pages AS (SELECT *, substr(address, instr(address, '://') + 3) || '/' AS page FROM entries)
SELECT who, address, substr(page, 1, instr(page, '/') - 1) AS host,
  max(count) AS visits, max(seen) AS last
FROM pages WHERE kind = 'main history' AND address LIKE '%://%' GROUP BY who, address;

-- Each time of each row with its zone, UTC or local to the machine examined. The last mod of a
-- daily or weekly history is local, whatever its label says. `event` is what the time tells, and
-- `used` is 1 where it is that of a visit or a use.
DROP VIEW IF EXISTS timeline;
CREATE VIEW timeline AS
WITH times AS (
  SELECT mod_date AS date, mod_time AS clock, 'last mod' AS meaning, * FROM entries
  UNION ALL SELECT access_date, access_time, 'access', * FROM entries
  UNION ALL SELECT expires_date, expires_time, 'expires', * FROM entries
  UNION ALL SELECT sync_date, sync_time, 'last sync', * FROM entries)
SELECT date || ' ' || rtrim(clock, ' UTClocal') AS time,
  CASE
    WHEN meaning = 'last mod' THEN iif(dated, 'local', iif(
      kind IN ('cache', 'cookie', 'main history'), 'UTC', ltrim(clock, '0123456789:. ')))
    ELSE ltrim(clock, '0123456789:. ') END AS zone,
  meaning, kind, who, CASE address WHEN '' THEN filename ELSE address END AS address, source, row,
  meaning = iif(kind = 'weekly history', 'last mod', 'access') AS used,
  CASE
    WHEN meaning IN ('expires', 'last sync') THEN meaning
    WHEN kind = 'weekly history' AND meaning = 'access' THEN 'index made, not a visit'
    WHEN address GLOB ':Host:*' THEN 'first visit to the host on that day'
    WHEN kind GLOB '* history' THEN 'last visit'
    WHEN kind = 'cookie' THEN iif(meaning = 'access', 'last sent or read', 'last set')
    WHEN kind = 'cache' THEN iif(meaning = 'access', 'last use', 'changed on the server')
    ELSE meaning END AS event
FROM times WHERE date <> '';

-- How many hours the machine's clock was ahead of UTC, by the rows of daily history.
DROP VIEW IF EXISTS offsets;
CREATE VIEW offsets AS
SELECT access_date AS day, round(24 * (
    julianday(mod_date || ' ' || rtrim(mod_time, ' UTClocal')) -
    julianday(access_date || ' ' || rtrim(access_time, ' UTC'))), 2) AS hours, count(*) AS rows
FROM entries WHERE kind = 'daily history' AND mod_date <> '' AND access_date <> ''
GROUP BY day, hours;

-- What became of each input, and its path on one line.
DROP VIEW IF EXISTS outcomes;
CREATE VIEW outcomes AS
SELECT *, replace(path, char(10), '\x0A') AS shown,
  CASE
    WHEN error <> '' OR '' IN (sha256, sha256_after) THEN 'failed'
    WHEN sha256 <> sha256_after THEN 'changed'
    WHEN how = 'parent' THEN 'read'
    WHEN rows > 0 THEN 'rows'
    ELSE 'no rows' END AS outcome
FROM inputs;

-- What can mislead, with the page and the section that tell of it.
DROP VIEW IF EXISTS known_cautions;
CREATE VIEW known_cautions (number, caution, page, section, meaning) AS
VALUES
  (1, 'local, labelled UTC', 'behaviours.md', 'Local times labelled UTC',
    'Last mod is in the local time of the machine examined, whatever its label says.'),
  (2, 'UTC, labelled local', 'behaviours.md', 'Local times labelled UTC',
    'Last mod is UTC: the label follows from "MSHist" in the path.'),
  (3, 'maybe local, labelled UTC', 'behaviours.md', 'Local times labelled UTC',
    'Where the kind of index isn''t known, last mod may be local.'),
  (4, 'one day early', 'behaviours.md', 'Dates of 2000',
    'Expires or last sync is a DOS time of March to December 2000: add one day.'),
  (5, 'maybe one day early', 'behaviours.md', 'Dates of 2000',
    'The same for 29 February 2000, and for the access of a LEAK row if that is a DOS time.'),
  (6, 'maybe an earlier state', 'behaviours.md', 'Records',
    'Another row of the same record has a later time or a higher count.'),
  (7, 'maybe cut', 'behaviours.md', 'Rows cut at a block''s end',
    'A cache row without user and header: its input was searched in blocks, or ends there.'),
  (8, 'maybe no row', 'behaviours.md', 'Texts',
    'The line before or behind it is no row: a text with a line end can also write a row.'),
  (9, 'access is no visit', 'output.md', 'What the cells mean',
    'The access of a weekly history is when that index was made; the visit is its last mod.'),
  (10, 'first visit to a host', 'output.md', 'What the cells mean',
    'A row of :Host: tells of the day''s first visit alone, and its count counts no pages.'),
  (11, 'use of a copy', 'output.md', 'What the cells mean',
    'Time and count of a cache row are of the stored copy: nobody need have seen it.'),
  (12, 'account "-"', 'output.md', 'What the cells mean',
    'The index stored "-" for the account: nobody is named.'),
  (13, 'times contradict', 'output.md', 'What the cells mean',
    'Visits of main history that differ, of daily history not by an offset of a zone, a local time '
    || 'outside the days of its index, or a file changed after its copy was used.'),
  (14, 'searched in blocks', 'behaviours.md', 'Rows cut at a block''s end',
    'About one row in a hundred may be cut, and no directories are filled in.'),
  (15, 'maybe searched in blocks', 'behaviours.md', 'Rows cut at a block''s end',
    'No row has a directory: the input may have been above 16 MiB or a disk.'),
  (16, 'maybe commas replaced', 'behaviours.md', 'Texts',
    'URLs or file names hold ";", of redirects "_", any of which may have been a comma.'),
  (17, 'lines that are no rows', 'behaviours.md', 'Texts',
    'Texts with a separator or a line end broke their rows, or a message stands there.');

-- The inputs that were searched in blocks; where that isn't known, those that look like it.
DROP VIEW IF EXISTS block_sources;
CREATE VIEW block_sources AS
SELECT source, 'searched in blocks' AS caution, rows FROM inputs
WHERE how IN ('blocks', 'disk') AND rows > 0
UNION ALL
SELECT source, 'maybe searched in blocks', count(*) FROM cells
WHERE type = 'URL ' AND source NOT IN (SELECT source FROM inputs)
GROUP BY source HAVING max(directory) = '' AND max(filename) <> '';

-- The row, and the name of each known caution that touches it. Where one touches a source as a
-- whole, `row` is NULL. `rows` is how many rows, or lines, one stands for.
DROP VIEW IF EXISTS cautions;
CREATE VIEW cautions AS
WITH
  looked_at AS (
    SELECT *,
      nullif(mod_date, '') || rtrim(mod_time, ' UTClocal') AS modified,
      nullif(access_date, '') || rtrim(access_time, ' UTC') AS accessed,
      strftime('%s', mod_date || ' ' || substr(mod_time, 1, 8))
        - strftime('%s', access_date || ' ' || substr(access_time, 1, 8)) AS ahead,
      (run, line) IN (SELECT run, line + 1 FROM other_lines WHERE what = 'no row'
        UNION SELECT run, line - 1 FROM other_lines WHERE what = 'no row') AS beside_no_row
    FROM entries),
  states AS (
    SELECT rowid AS row, source, count, access_date || access_time AS used,
      max(count) OVER same AS most, max(access_date || access_time) OVER same AS latest
    FROM cells WHERE type = 'URL '
    WINDOW same AS (PARTITION BY source, url, user, filename, directory))
SELECT row, source, caution, 1 AS rows FROM looked_at CROSS JOIN known_cautions
WHERE CASE caution
  WHEN 'local, labelled UTC' THEN dated AND mod_time LIKE '% UTC'
  WHEN 'UTC, labelled local' THEN
    kind IN ('cache', 'cookie', 'main history') AND mod_time LIKE '% local'
  WHEN 'maybe local, labelled UTC' THEN kind = 'other' AND NOT dated AND mod_time LIKE '% UTC'
  WHEN 'one day early' THEN expires_date BETWEEN '2000-03-01' AND '2000-12-31'
    OR sync_date BETWEEN '2000-03-01' AND '2000-12-31'
  WHEN 'maybe one day early' THEN '2000-02-29' IN (expires_date, sync_date)
    OR type = 'LEAK' AND access_date BETWEEN '2000-02-29' AND '2000-12-31'
  WHEN 'maybe cut' THEN kind = 'cache' AND user = '' AND header = ''
  WHEN 'maybe no row' THEN beside_no_row
  WHEN 'access is no visit' THEN kind = 'weekly history'
  WHEN 'first visit to a host' THEN kind = 'daily history' AND address GLOB ':Host:*'
  WHEN 'use of a copy' THEN kind = 'cache'
  WHEN 'account "-"' THEN who = '-'
  WHEN 'times contradict' THEN CASE kind
    WHEN 'main history' THEN modified <> accessed
    WHEN 'cache' THEN modified > accessed
    WHEN 'weekly history' THEN mod_date < begin OR mod_date >= after
    WHEN 'daily history' THEN mod_date < begin OR mod_date >= after
      OR abs(ahead) > 14 * 3600 OR ahead % 900 <> 0
    END
  END
UNION ALL
SELECT row, source, 'maybe an earlier state', 1 FROM states WHERE count < most OR used < latest
UNION ALL
SELECT NULL, source, caution, rows FROM block_sources
UNION ALL
SELECT NULL, source, 'maybe commas replaced', count(*) FROM cells
WHERE iif(type = 'REDR', instr(url, '_'), instr(url || filename, ';')) GROUP BY source
UNION ALL
SELECT NULL, coalesce((SELECT source FROM inputs WHERE run = other_lines.run),
  (SELECT file FROM runs WHERE run = other_lines.run)), 'lines that are no rows', count(*)
FROM other_lines WHERE what = 'no row' GROUP BY run;
