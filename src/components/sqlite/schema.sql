-- The tables of the database, which the proxy and any number of consoles share. A console creates what is missing
-- of the tables, columns and indexes when it opens a database that was last opened with another text than this one.
-- So a new table needs no more than its statement here; what is there already is left alone: a column or an index that
-- is to be another one needs another name; an index that is no longer needed is listed in schema.cpp.
--
-- Entries of the list tables are not unique. Every column by which statements choose or order rows has an index;
-- where both happen together, the index serves both. Those of the logs end with the time, in whose order their rows are
-- asked for. Texts are UTF-8. The table of the scripts, `scriptengine`, is
-- made by its page.
--
-- The columns by which entries and rows of the logs are found ignore the case of A to Z; texts are kept as they come.
-- A column of an older database that compares by case is brought over when it is opened. The keys of options differ
-- by case, and so do the identifiers of mails in the archive, which others give out.

CREATE TABLE konf         (ID TEXT, value TEXT);                 -- the options
CREATE UNIQUE INDEX konf_ID              ON konf (ID);

CREATE TABLE blacklist    (entry TEXT COLLATE NOCASE);           -- domains
CREATE INDEX blacklist_entry             ON blacklist (entry);
CREATE TABLE whitelist    (entry TEXT COLLATE NOCASE);
CREATE INDEX whitelist_entry             ON whitelist (entry);
CREATE TABLE mydomain     (entry TEXT COLLATE NOCASE);
CREATE INDEX mydomain_entry              ON mydomain (entry);
CREATE TABLE exceptdomain (entry TEXT COLLATE NOCASE);
CREATE INDEX exceptdomain_entry          ON exceptdomain (entry);

CREATE TABLE Blackhost    (IPNumber TEXT COLLATE NOCASE);        -- addresses of hosts
CREATE INDEX Blackhost_IPNumber          ON Blackhost (IPNumber);
CREATE TABLE Whitehost    (IPNumber TEXT COLLATE NOCASE);
CREATE INDEX Whitehost_IPNumber          ON Whitehost (IPNumber);
CREATE TABLE myips        (IPNumber TEXT COLLATE NOCASE);
CREATE INDEX myips_IPNumber              ON myips (IPNumber);
CREATE TABLE blacksub     (subnet TEXT COLLATE NOCASE);
CREATE INDEX blacksub_subnet             ON blacksub (subnet);
CREATE TABLE whitesub     (subnet TEXT COLLATE NOCASE);
CREATE INDEX whitesub_subnet             ON whitesub (subnet);

CREATE TABLE blackmail    (entry TEXT COLLATE NOCASE);           -- e-mail addresses
CREATE INDEX blackmail_entry             ON blackmail (entry);
CREATE TABLE whitemail    (entry TEXT COLLATE NOCASE);
CREATE INDEX whitemail_entry             ON whitemail (entry);
CREATE TABLE localmail    (entry TEXT COLLATE NOCASE);
CREATE INDEX localmail_entry             ON localmail (entry);
CREATE TABLE exceptmail   (entry TEXT COLLATE NOCASE);
CREATE INDEX exceptmail_entry            ON exceptmail (entry);

CREATE TABLE swords       (entry TEXT COLLATE NOCASE);           -- keywords
CREATE INDEX swords_entry                ON swords (entry);
CREATE TABLE words        (entry TEXT COLLATE NOCASE);
CREATE INDEX words_entry                 ON words (entry);
CREATE TABLE subjectwhite (entry TEXT COLLATE NOCASE);
CREATE INDEX subjectwhite_entry          ON subjectwhite (entry);

CREATE TABLE rblserver    (entry TEXT COLLATE NOCASE);           -- zones of block lists
CREATE INDEX rblserver_entry             ON rblserver (entry);
CREATE TABLE wblserver    (entry TEXT COLLATE NOCASE);
CREATE INDEX wblserver_entry             ON wblserver (entry);
CREATE TABLE surblserver  (entry TEXT COLLATE NOCASE);
CREATE INDEX surblserver_entry           ON surblserver (entry);

CREATE TABLE files        (files TEXT COLLATE NOCASE);           -- attachments
CREATE INDEX files_files                 ON files (files);
CREATE TABLE extension    (extension TEXT COLLATE NOCASE);
CREATE INDEX extension_extension         ON extension (extension);

-- What people know of entries: why one is there, and until when (a local date, YYYY-MM-DD). "list" is the list's name,
-- as in core/contracts/list_tables.h. The proxy needs none of it. A note stays when its entry is removed elsewhere,
-- and says nothing while there is none.
CREATE TABLE entry_notes  (list TEXT, entry TEXT COLLATE NOCASE, comment TEXT, expires TEXT);
CREATE UNIQUE INDEX entry_notes_list_entry ON entry_notes (list, entry);

CREATE TABLE rwords       (orig TEXT COLLATE NOCASE, repl TEXT); -- words and their replacements
CREATE UNIQUE INDEX rwords_orig          ON rwords (orig);

CREATE TABLE disclaimer   (rule TEXT COLLATE NOCASE, plain TEXT, html TEXT);
CREATE INDEX disclaimer_rule             ON disclaimer (rule);

CREATE TABLE pop3 (                                              -- mailboxes to collect from
  entry         TEXT COLLATE NOCASE,                             -- user name, comma, server
  password      TEXT,
  badmail       TEXT,
  forward       TEXT,
  leave         INTEGER,
  maxsize       INTEGER,
  scan          INTEGER,
  spamforward   TEXT,
  spamtobadmail INTEGER,
  subjectdelete INTEGER,
  submit        TEXT,
  tag           TEXT
);
CREATE UNIQUE INDEX pop3_entry           ON pop3 (entry);

-- The logs. status: 0 neutral, 1 white, 2 black. Times sort as they stand.
CREATE TABLE iplog (
  ID            INTEGER PRIMARY KEY,
  IPNumber      TEXT COLLATE NOCASE,
  status        INTEGER DEFAULT 0,
  servertime    TEXT
);
CREATE INDEX iplog_IPNumber_servertime      ON iplog (IPNumber, servertime);
CREATE INDEX iplog_servertime               ON iplog (servertime);
CREATE INDEX iplog_status_servertime        ON iplog (status, servertime);

CREATE TABLE predatalog (
  ID            INTEGER PRIMARY KEY,
  IPNumber      TEXT COLLATE NOCASE,
  mailfrom      TEXT COLLATE NOCASE,
  reason        TEXT COLLATE NOCASE,
  status        INTEGER DEFAULT 0,
  servertime    TEXT
);
CREATE INDEX predatalog_IPNumber_servertime ON predatalog (IPNumber, servertime);
CREATE INDEX predatalog_mailfrom_servertime ON predatalog (mailfrom, servertime);
CREATE INDEX predatalog_servertime          ON predatalog (servertime);
CREATE INDEX predatalog_reason_servertime   ON predatalog (reason, servertime);
CREATE INDEX predatalog_status_servertime   ON predatalog (status, servertime);

CREATE TABLE subjectlog (
  ID            INTEGER PRIMARY KEY,
  IPNumber      TEXT COLLATE NOCASE,
  mailfrom      TEXT COLLATE NOCASE,
  mailto        TEXT,
  keyword       TEXT COLLATE NOCASE,
  servertime    TEXT
);
CREATE INDEX subjectlog_IPNumber_servertime ON subjectlog (IPNumber, servertime);
CREATE INDEX subjectlog_mailfrom_servertime ON subjectlog (mailfrom, servertime);
CREATE INDEX subjectlog_keyword_servertime  ON subjectlog (keyword, servertime);
CREATE INDEX subjectlog_servertime          ON subjectlog (servertime);

CREATE TABLE bodylog (
  ID            INTEGER PRIMARY KEY,
  IPNumber      TEXT COLLATE NOCASE,
  mailfrom      TEXT COLLATE NOCASE,
  mailto        TEXT,
  keyword       TEXT COLLATE NOCASE,
  servertime    TEXT
);
CREATE INDEX bodylog_IPNumber_servertime    ON bodylog (IPNumber, servertime);
CREATE INDEX bodylog_mailfrom_servertime    ON bodylog (mailfrom, servertime);
CREATE INDEX bodylog_keyword_servertime     ON bodylog (keyword, servertime);
CREATE INDEX bodylog_servertime             ON bodylog (servertime);

CREATE TABLE avlog (
  ID            INTEGER PRIMARY KEY,
  IPNumber      TEXT COLLATE NOCASE,
  mailfrom      TEXT COLLATE NOCASE,
  mailto        TEXT,
  reason        TEXT,
  servertime    TEXT
);
CREATE INDEX avlog_IPNumber_servertime      ON avlog (IPNumber, servertime);
CREATE INDEX avlog_mailfrom_servertime      ON avlog (mailfrom, servertime);
CREATE INDEX avlog_reason_servertime        ON avlog (reason, servertime);
CREATE INDEX avlog_servertime               ON avlog (servertime);

-- The archive. The source of the mail comes last: rows are read without it until it is shown. Keys
-- are never given twice, so that who deletes the mail on the screen can't hit one that came later.
CREATE TABLE marchive (
  ID            INTEGER PRIMARY KEY AUTOINCREMENT,
  mid           TEXT,
  subject       TEXT,
  sender        TEXT,
  sdom          TEXT,
  sip           TEXT,
  envelope      TEXT,
  mailheader    TEXT,
  returnaddr    TEXT,
  servertime    TEXT,
  tstamp        TEXT,
  timestamp     TEXT,
  mpath         TEXT,
  email         BLOB
);
CREATE INDEX marchive_mid                ON marchive (mid);
CREATE INDEX marchive_servertime         ON marchive (servertime, tstamp);

-- What the overview has counted of the logs, so that it counts nothing twice. A unit is a finished hour
-- ("2026-11-21 14") or day ("2026-11-21") of the column servertime. It is complete if log_units has a row for each
-- log, with the number of that log's rows. A row of a log that is changed takes its units out of log_units, and
-- log_marks tells by which the consoles notice rows that were deleted, or came late. Names are percent-encoded. All
-- three tables may be emptied at any time.
CREATE TABLE log_units    (unit TEXT, log TEXT, amount INTEGER);
CREATE UNIQUE INDEX log_units_unit_log   ON log_units (unit, log);
CREATE TABLE log_counts   (unit TEXT, kind TEXT, name TEXT, amount INTEGER);
CREATE INDEX log_counts_unit_kind        ON log_counts (unit, kind);
CREATE TABLE log_marks    (log TEXT, last_id INTEGER, last_time TEXT, amount INTEGER, counted_until TEXT);
CREATE UNIQUE INDEX log_marks_log        ON log_marks (log);

CREATE TRIGGER iplog_changed AFTER UPDATE ON iplog BEGIN
  DELETE FROM log_units WHERE unit=substr(OLD.servertime, 1, 13) AND log='iplog';
  DELETE FROM log_units WHERE unit=substr(OLD.servertime, 1, 10) AND log='iplog';
END;
CREATE TRIGGER predatalog_changed AFTER UPDATE ON predatalog BEGIN
  DELETE FROM log_units WHERE unit=substr(OLD.servertime, 1, 13) AND log='predatalog';
  DELETE FROM log_units WHERE unit=substr(OLD.servertime, 1, 10) AND log='predatalog';
END;
CREATE TRIGGER subjectlog_changed AFTER UPDATE ON subjectlog BEGIN
  DELETE FROM log_units WHERE unit=substr(OLD.servertime, 1, 13) AND log='subjectlog';
  DELETE FROM log_units WHERE unit=substr(OLD.servertime, 1, 10) AND log='subjectlog';
END;
CREATE TRIGGER bodylog_changed AFTER UPDATE ON bodylog BEGIN
  DELETE FROM log_units WHERE unit=substr(OLD.servertime, 1, 13) AND log='bodylog';
  DELETE FROM log_units WHERE unit=substr(OLD.servertime, 1, 10) AND log='bodylog';
END;
CREATE TRIGGER avlog_changed AFTER UPDATE ON avlog BEGIN
  DELETE FROM log_units WHERE unit=substr(OLD.servertime, 1, 13) AND log='avlog';
  DELETE FROM log_units WHERE unit=substr(OLD.servertime, 1, 10) AND log='avlog';
END;
