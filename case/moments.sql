-- For `body` and `events`, behind a table `chosen` of times: these with their second of
-- UTC. In the current folder `moved` holds what is known of local times. Lines that begin with "#"
-- are for standard error.
CREATE TEMP TABLE moved (local TEXT, utc INTEGER);
.separator |
.import moved moved
CREATE INDEX temp.moved_local ON moved (local);
CREATE TEMP VIEW moments AS
SELECT *, substr(time, 1, 19) AS second, CASE zone
    WHEN 'UTC' THEN CAST(strftime('%s', substr(time, 1, 19)) AS INTEGER)
    ELSE (SELECT min(utc) FROM moved WHERE local = substr(time, 1, 19)) END AS utc
FROM chosen;
.mode list
SELECT '#local times left out: ' || count(*) || iif((SELECT count(*) FROM moved),
  ', since the zone skips them', '; name the zone of the machine examined')
FROM moments WHERE utc IS NULL HAVING count(*) > 0;
SELECT '#local times that occur twice in the zone, of which the first is taken: ' || count(*)
FROM moments
WHERE zone = 'local' AND second IN (SELECT local FROM moved GROUP BY local HAVING count(*) > 1)
HAVING count(*) > 0;
