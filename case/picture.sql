-- How many addresses were last used on each day and, as the second block, in each hour of the day,
-- by UTC. What several indexes tell of one use is counted once.
CREATE TEMP TABLE used AS
SELECT DISTINCT who, address, time FROM timeline WHERE used AND zone = 'UTC';
.separator ' '
SELECT substr(time, 1, 10), count(*) FROM used GROUP BY 1;
SELECT char(10) FROM used LIMIT 1;
SELECT substr(time, 12, 2), count(*) FROM used GROUP BY 1;
