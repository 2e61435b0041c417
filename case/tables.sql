-- The tables of a case. Those of `load` have nothing in `inputs` and `facts`.

-- Each row as udx wrote it, less the NULs that directories can hold; `run` and `line` say where.
CREATE TABLE cells (
  mod_date TEXT, mod_time TEXT, access_date TEXT, access_time TEXT, expires_date TEXT,
  expires_time TEXT, sync_date TEXT, sync_time TEXT, type TEXT, url TEXT, user TEXT, filename TEXT,
  size INTEGER, directory TEXT, count INTEGER, header TEXT, source TEXT, run INTEGER, line INTEGER);

-- Lines of udx's results that are no row: the run's details, the column titles, messages, and all
-- others.
CREATE TABLE other_lines (run INTEGER, line INTEGER, what TEXT, text TEXT);

-- The files of results that were loaded.
CREATE TABLE runs (run INTEGER PRIMARY KEY, file TEXT);

-- What was searched, and how: 'whole', in 'blocks', as a 'disk', or with one as its 'parent'; a
-- 'folder' couldn't be listed. `source` is what its rows name, `status` what udx returned, `error`
-- what went wrong.
CREATE TABLE inputs (
  run INTEGER PRIMARY KEY, path TEXT, source TEXT, how TEXT, size INTEGER, sha256 TEXT,
  sha256_after TEXT, status INTEGER, error TEXT, rows INTEGER DEFAULT 0);

CREATE TABLE facts (name TEXT, value TEXT);
