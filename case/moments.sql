-- For `body` and `events`, behind a table `chosen` of times: these with their second of
-- UTC. In the current folder `moved` holds what is known of local times, and `left_out` is written.
CREATE TEMP TABLE moved (local TEXT, utc INTEGER);
.separator |
.import moved moved
CREATE INDEX temp.moved_local ON moved (local);
CREATE TEMP VIEW moments AS
SELECT *, substr(time, 1, 19) AS second, CASE zone
    WHEN 'UTC' THEN CAST(strftime('%s', substr(time, 1, 19)) AS INTEGER)
    ELSE (SELECT min(utc) FROM moved WHERE local = substr(time, 1, 19)) END AS utc
FROM chosen;
.output left_out
SELECT count(*) || ' local times are left out: ' || iif((SELECT count(*) FROM moved),
  'they don''t occur in the zone', 'name the zone of the machine examined')
FROM moments WHERE utc IS NULL HAVING count(*) > 0;
SELECT count(*) || ' local times occur twice in the zone: the first is taken' FROM moments
WHERE zone = 'local' AND second IN (SELECT local FROM moved GROUP BY local HAVING count(*) > 1)
HAVING count(*) > 0;
.output
.mode list
