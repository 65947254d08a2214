-- The tables of the database, which the proxy and any number of consoles share. A console creates what is missing
-- of the tables, columns and indexes when it opens a database that was last opened with another text than this one.
-- So a new table needs no more than its statement here; what is there already is left alone: a column or an index that
-- is to be another one needs another name.
--
-- Entries of the list tables are not unique. Every column by which statements choose or order rows has an index;
-- where both happen together, the index serves both. Texts are UTF-8. The table of the scripts, `scriptengine`, is
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
CREATE INDEX iplog_IPNumber              ON iplog (IPNumber);
CREATE INDEX iplog_servertime            ON iplog (servertime);
CREATE INDEX iplog_status_servertime     ON iplog (status, servertime);

CREATE TABLE predatalog (
  ID            INTEGER PRIMARY KEY,
  IPNumber      TEXT COLLATE NOCASE,
  mailfrom      TEXT COLLATE NOCASE,
  reason        TEXT COLLATE NOCASE,
  status        INTEGER DEFAULT 0,
  servertime    TEXT
);
CREATE INDEX predatalog_IPNumber          ON predatalog (IPNumber);
CREATE INDEX predatalog_mailfrom          ON predatalog (mailfrom);
CREATE INDEX predatalog_servertime        ON predatalog (servertime);
CREATE INDEX predatalog_reason_servertime ON predatalog (reason, servertime);
CREATE INDEX predatalog_status_servertime ON predatalog (status, servertime);

CREATE TABLE subjectlog (
  ID            INTEGER PRIMARY KEY,
  IPNumber      TEXT COLLATE NOCASE,
  mailfrom      TEXT COLLATE NOCASE,
  mailto        TEXT,
  keyword       TEXT COLLATE NOCASE,
  servertime    TEXT
);
CREATE INDEX subjectlog_IPNumber         ON subjectlog (IPNumber);
CREATE INDEX subjectlog_mailfrom         ON subjectlog (mailfrom);
CREATE INDEX subjectlog_keyword          ON subjectlog (keyword);
CREATE INDEX subjectlog_servertime       ON subjectlog (servertime);

CREATE TABLE bodylog (
  ID            INTEGER PRIMARY KEY,
  IPNumber      TEXT COLLATE NOCASE,
  mailfrom      TEXT COLLATE NOCASE,
  mailto        TEXT,
  keyword       TEXT COLLATE NOCASE,
  servertime    TEXT
);
CREATE INDEX bodylog_IPNumber            ON bodylog (IPNumber);
CREATE INDEX bodylog_mailfrom            ON bodylog (mailfrom);
CREATE INDEX bodylog_keyword             ON bodylog (keyword);
CREATE INDEX bodylog_servertime          ON bodylog (servertime);

CREATE TABLE avlog (
  ID            INTEGER PRIMARY KEY,
  IPNumber      TEXT COLLATE NOCASE,
  mailfrom      TEXT COLLATE NOCASE,
  mailto        TEXT,
  reason        TEXT,
  servertime    TEXT
);
CREATE INDEX avlog_IPNumber              ON avlog (IPNumber);
CREATE INDEX avlog_mailfrom              ON avlog (mailfrom);
CREATE INDEX avlog_servertime            ON avlog (servertime);

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
