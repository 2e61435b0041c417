-- Views of udx's rows that the recipes share. They read the table `cells` that `load` of recipes.md
-- makes: one column for each of the 17 cells, with dates of the default form.

-- Each row with the kind of index that it is from, who used it, the address alone, and when it was
-- last seen: the access, but for a weekly history, whose access is when that index was made.
DROP VIEW IF EXISTS entries;
CREATE VIEW entries AS
WITH
  split AS (
    SELECT *,
      CASE WHEN url GLOB 'Visited: *@*' OR url GLOB 'Cookie:*@*' OR url GLOB ':[0-9]*: *@*'
        THEN ltrim(substr(url, instr(substr(url, 2), ':') + 2)) END AS named,
      -- A daily or weekly history puts two days ahead: its first, and the first after it.
      julianday(substr(url, 2, 4) || '-' || substr(url, 6, 2) || '-' || substr(url, 8, 2)) AS begin,
      julianday(substr(url, 10, 4) || '-' || substr(url, 14, 2) || '-' || substr(url, 16, 2))
        AS after
    FROM cells),
  told AS (
    SELECT *,
      CASE
        WHEN type <> 'URL ' THEN trim(type)
        WHEN url GLOB 'Visited: *@*' THEN 'main history'
        WHEN url GLOB 'Cookie:*@*' THEN 'cookie'
        WHEN named <> '' AND after - begin = 1 THEN 'daily history'
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

-- How often a user visited a page. The other histories count the same visits as the main one, and a
-- copy or an older state of a record counts no more than the record itself: neither is added.
DROP VIEW IF EXISTS visits;
CREATE VIEW visits AS
WITH pages AS (SELECT *, substr(address, instr(address, '://') + 3) || '/' AS page FROM entries)
SELECT who, address, substr(page, 1, instr(page, '/') - 1) AS host,
  max(count) AS visits, max(seen) AS last
FROM pages WHERE kind = 'main history' AND address LIKE '%://%' GROUP BY who, address;

-- Each time of each row with its zone, UTC or local to the machine examined. The last mod of a
-- daily or weekly history is local, whatever its label says.
DROP VIEW IF EXISTS timeline;
CREATE VIEW timeline AS
WITH times AS (
  SELECT mod_date AS date, mod_time AS clock, 'last mod' AS meaning, * FROM entries
  UNION ALL SELECT access_date, access_time, 'access', * FROM entries
  UNION ALL SELECT expires_date, expires_time, 'expires', * FROM entries
  UNION ALL SELECT sync_date, sync_time, 'last sync', * FROM entries)
SELECT date || ' ' || rtrim(clock, ' UTClocal') AS time,
  CASE WHEN meaning = 'last mod' AND url GLOB ':[0-9]*: *' THEN 'local'
    ELSE ltrim(clock, '0123456789:. ') END AS zone,
  meaning, kind, who, CASE address WHEN '' THEN filename ELSE address END AS address, source
FROM times WHERE date <> '';
