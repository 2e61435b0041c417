-- The report, behind marks.sql. The current folder holds `title`, `report.css`, `answer.sql` and
-- `picture.svg`.
-- Texts of the case are shown by .mode html alone, which quotes them, or as the title here.
CREATE TEMP TABLE heading AS
SELECT replace(replace(replace(CAST(readfile('title') AS TEXT),
  '&', '&amp;'), '<', '&lt;'), '"', '&quot;') AS title;

-- One line for what several rows tell of one use.
CREATE TEMP TABLE uses AS
SELECT substr(time, 1, 19) AS time, zone, replace(group_concat(DISTINCT kind), ',', ', ') AS kind,
  who AS user, address, max(count) AS count,
  replace(group_concat(DISTINCT run), ',', ', ') AS input,
  replace(group_concat(DISTINCT number), ',', ', ') AS cautions
FROM (SELECT t.*, c.count, c.run FROM timeline t JOIN cells c ON c.rowid = t.row WHERE used) AS t
LEFT JOIN marks ON marks.row = t.row
GROUP BY t.time, zone, who, address;

CREATE TEMP TABLE shown AS
SELECT * FROM uses ORDER BY kind NOT LIKE '%history%', kind <> 'cookie', time DESC LIMIT 5000;

.mode list
.headers off
.print '<!DOCTYPE html>'
.print '<html lang="en"><head><meta charset="utf-8">'
SELECT '<meta http-equiv="Content-Security-Policy" '
  || 'content="default-src ''none''; style-src ''unsafe-inline''; base-uri ''none''; '
  || 'form-action ''none''">';
.print '<meta name="viewport" content="width=device-width">'
SELECT '<title>' || title || '</title>' FROM heading;
.print '<style>'
SELECT CAST(readfile('report.css') AS TEXT);
.print '</style></head><body>'
SELECT '<h1>' || title || '</h1>' FROM heading;


.print '<h2>Was everything read?</h2><div class="answer"><table>'
.mode html
.read answer.sql
.print '</table></div>'

.print '<h2>The run</h2><table class="facts">'
SELECT * FROM facts;
.print '</table>'

.headers on
.print '<h2>Inputs</h2>'
.print '<p>The SHA-256 of each was taken before it was read, and again afterwards. Where they differ,'
.print 'both stand here.</p>'
.print '<table class="inputs">'
SELECT run AS input, shown AS path, how AS searched, size AS bytes, rows,
  outcome || coalesce(': ' || nullif(error, ''), '') AS outcome,
  sha256 || iif(sha256 = sha256_after, '', ' ' || sha256_after) AS "SHA-256" FROM outcomes;
.print '</table>'

.print '<h2>What they hold</h2><table class="sources">'
SELECT run AS input, kind, who AS user, rows, first || zone AS "first used",
  last || zone AS "last used"
FROM (SELECT run, kind, who, count(*) AS rows, substr(min(nullif(seen, '')), 1, 19) AS first,
  substr(max(seen), 1, 19) AS last, ltrim(substr(max(seen), 20), '.0123456789') AS zone
  FROM entries GROUP BY run, kind, who);
.print '</table>'
.print '<h2>Users</h2>'
.print '<p>Accounts by their names in the rows. "-" is one that an index stored so; where no name stands,'
.print 'nobody is named.</p>'
.print '<table class="users">'
SELECT who AS user, kind, rows, substr(first, 1, 19) || zone AS "first used",
  substr(last, 1, 19) || zone AS "last used"
FROM (SELECT *, ltrim(substr(last, 20), '.0123456789') AS zone FROM users);
.print '</table>'
.print '<h2>The clock of the machine</h2>'
.print '<p>How many hours it was ahead of UTC, by rows of daily history, which hold both times.</p>'
.print '<table class="offsets">'
SELECT day, hours, rows, iif(abs(hours) > 14, 'no zone is so far off', '') AS remark FROM offsets;
.print '</table>'

.print '<h2>Activity</h2><figure>'
.mode list
.headers off
SELECT CAST(readfile('picture.svg') AS TEXT);
.print '<figcaption>How many addresses were last used on each day and in each hour of the day, by'
.print 'UTC. What several indexes tell of one use counts once; earlier uses have left no time.'
.print '</figcaption></figure>'

.print '<h2>Cautions</h2>'
.print '<p>What is known to mislead, and touches rows of this case: their lines below have its'
.print 'number. The sections are those of the pages that come with udx.</p>'
.print '<table class="cautions">'
.mode html
.headers on
SELECT number AS no, caution, sum(rows) AS rows, meaning, section || ' (' || page || ')' AS section
FROM marks JOIN known_cautions USING (number, caution) GROUP BY number;
.print '</table>'

.print '<h2>Timeline</h2>'
.mode list
.headers off
SELECT '<p>Visits and uses, those that agree in time, user and address on one line. '
  || iif((SELECT count(*) FROM uses) > 5000, 'Here are 5000 of ' || (SELECT count(*) FROM uses)
  || ' lines: histories first, then cookies, then all others, the latest of each. The others are '
  || 'in the case: udx-case sheet prints them.', '')
  || ' Rows without such a time, as redirects have none, aren''t here: ' || count(*) || '.</p>'
FROM entries WHERE seen = '';
.mode html
.headers on
.print '<table class="timeline">'
SELECT * FROM shown ORDER BY time, user, address;
.print '</table>'
.print '</body></html>'
