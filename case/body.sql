-- A line for each visit or use, its time as access. Of a time of 0 mactime would make a line, of -1
-- it doesn't.
SELECT '0|' || replace(kind || ': ' || event || iif(who = '', '', ' of ' || who) || ': ' || address
  || ' (' || source || ', row ' || row || ')', '|', '\x7C') || '|0|0|0|0|0|' || utc || '|-1|-1|-1'
FROM moments WHERE utc IS NOT NULL;
