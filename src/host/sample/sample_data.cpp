#include "host/sample/sample_data.h"

#include "core/text/utf8.h"
#include "host/sample/lists.h"
#include "host/sample/logs.h"
#include "host/sample/mails.h"
#include "host/sample/options.h"
#include "host/sample/rows.h"
#include "host/sample/scripts.h"

namespace zrl::sample {

namespace {

using std::string_view;

constexpr Literal tables_beside_lists[] = {"konf",       "rwords",     "pop3",    "disclaimer", "iplog",
                                           "predatalog", "subjectlog", "bodylog", "avlog",      "marchive"};

struct Replacement {
  string_view from;
  string_view to;
};

constexpr Replacement replacements[] = {{"damn", "d***"},
                                        {"hell", "h***"},
                                        {"stupid", "unwise"},
                                        {"idiot", "person"},
                                        {"crap", "rubbish"},
                                        {"cheap pills", "[advertisement]"},
                                        {"free casino", "[advertisement]"},
                                        {"penny stock", "[advertisement]"},
                                        {"replica watch", "[advertisement]"},
                                        {"click here now", "[link]"},
                                        {"lottery winner", "[advertisement]"},
                                        {"asap", "as soon as possible"},
                                        {"fyi", "for your information"},
                                        {"btw", "by the way"},
                                        {"imho", "in my opinion"},
                                        {"eod", "end of the day"},
                                        {"tbd", "to be decided"},
                                        {"rsvp", "please reply"},
                                        {"cu", "see you"},
                                        {"thx", "thanks"},
                                        {"pls", "please"},
                                        {"recieve", "receive"},
                                        {"adress", "address"},
                                        {"seperate", "separate"},
                                        {"definately", "definitely"},
                                        {"occured", "occurred"},
                                        {"untill", "until"},
                                        {"wich", "which"},
                                        {"teh", "the"},
                                        {"Adresse folgt", "Anschrift folgt"},
                                        {"i.A.", "im Auftrag"},
                                        {"mfg", "Mit freundlichen Grüßen"},
                                        {"vg", "Viele Grüße"},
                                        {"z.Hd.", "zu Händen"},
                                        {"old-name.example.net", "mirvan.example"},
                                        {"Old Name", "Mirvan"},
                                        {"confidential copy", " "},
                                        {"sent from my phone", " "},
                                        {"virus free", " "},
                                        {"100% guaranteed", "[advertisement]"}};

struct Account {
  string_view entry;
  string_view password;
  string_view forward;
  string_view spam_forward;
  string_view submit;
  string_view badmail;
  string_view tag;
  string_view flags;  // leave, scan, spamtobadmail, subjectdelete
  string_view max_size;
};

constexpr Account accounts[] = {
    {"office,pop.example.com", "sample-one", "office@mirvan.example", "", "", "", "[SPAM]", "0100", "0"},
    {"sales,pop.example.net", "sample-two", "sales@shop.mirvan.example", "spam@mirvan.example", "", "",
     "[SPAM]", "0101", "2048"},
    {"orders,mailbox.shop.test", "sample-three", "", "", "C:\\Mirvan\\Pickup", "C:\\Mirvan\\Badmail", "",
     "1110", "10240"},
    {"lists,pop.example.org", "sample-four", "lists@lists.example.org", "", "", "", "", "1000", "0"},
    {"webmaster,old.provider.invalid", "sample-five", "", "", "", "\\\\files\\badmail", "[SPAM]", "0110",
     "512"}};

struct Disclaimer {
  string_view rule;
  string_view plain;
  string_view html;
};

constexpr Disclaimer disclaimers[] = {
    {"*@mirvan.example", "Mirvan Sample Works, 1 Example Street\r\nhttp://www.mirvan.example/",
     "<hr><p><b>Mirvan Sample Works</b>, 1 Example Street<br><a "
     "href=\"http://www.mirvan.example/\">www.mirvan."
     "example</a></p>"},
    {"*@shop.mirvan.example", "Orders placed before noon leave the same day.",
     "<p><i>Orders placed before noon leave the same day.</i></p>"},
    {"*@branch-south.test", "Diese Nachricht ist nur für den Empfänger bestimmt.",
     "<p>Diese Nachricht ist nur f&uuml;r den Empf&auml;nger bestimmt.</p>"}};

bool has_rows(Database& database, ConnectionHandle& conn, Literal table) {
  return database.count_value("select * from " + table, conn) > 0;
}

void write_small_tables(Connection& conn, const Report& report) {
  for (const Replacement& pair : replacements) {
    conn.execute("INSERT INTO rwords (orig,repl) values ('" + value(pair.from) + "','" + value(pair.to) +
                 "')");
  }
  report("rwords", std::size(replacements));
  for (const Account& a : accounts) {
    conn.execute(
        "INSERT INTO pop3 (entry,[password],forward,spamforward,submit,badmail,tag,leave,scan,spamtobadmail,"
        "subjectdelete,maxsize) VALUES ('" +
        value(a.entry) + "','" + value(a.password) + "','" + value(a.forward) + "','" +
        value(a.spam_forward) + "','" + value(a.submit) + "','" + value(a.badmail) + "','" + value(a.tag) +
        "'," + number(a.flags.substr(0, 1)) + "," + number(a.flags.substr(1, 1)) + "," +
        number(a.flags.substr(2, 1)) + "," + number(a.flags.substr(3, 1)) + "," + number(a.max_size) + ")");
  }
  report("pop3", std::size(accounts));
  for (const Disclaimer& one : disclaimers) {
    conn.execute("INSERT INTO disclaimer ([rule],plain,html) VALUES ('" + value(one.rule) + "','" +
                 value(one.plain) + "','" + value(one.html) + "')");
  }
  report("disclaimer", std::size(disclaimers));
}

void write_archive(Connection& conn, const Lists& lists, std::chrono::local_seconds end,
                   const Report& report) {
  const std::vector<Mail> mails = make_mails(lists, end);
  for (const Mail& mail : mails) {
    const auto domain = [](string_view address) { return address.substr(address.rfind('@') + 1); };
    const std::string envelope = join({"HELO mx.", domain(mail.sender), "\r\nMAIL FROM:<", mail.return_path,
                                       ">\r\nRCPT TO:<", mail.recipient, ">\r\n"});
    conn.execute(
        "INSERT INTO marchive (mid,sender,sdom,sip,envelope,returnaddr,servertime,tstamp,timestamp,"
        "mpath) VALUES ('" +
        value(mail.id) + "','" + value(mail.sender) + "','" + value(domain(mail.sender)) + "','" +
        value(mail.host) + "','" + value(envelope) + "','" + value(domain(mail.return_path)) + "','" +
        value(mail.moment.log_time()) + "','" + value(mail.moment.stamp()) + "','" +
        value(mail.moment.log_time()) + "','')");
    // Headers and sources are as senders made them; a text column takes valid text only.
    set_cells(conn, "SELECT * from marchive where mid='" + value(mail.id) + "'",
              {{"subject", valid_utf8(mail.subject)},
               {"mailheader", valid_utf8(mail.header)},
               {"email", mail.source, true}});
  }
  report("marchive", mails.size());
}

void write_scripts(Connection& conn, const Report& report) {
  for (const Script& script : scripts()) {
    conn.execute("INSERT INTO scriptengine (scriptname,sposition,prio,svisible) VALUES ('" +
                 value(script.name) + "','" + value(script.position) + "'," +
                 number(std::to_string(script.priority)) + "," + number(script.visible ? "1" : "0") + ")");
    set_cells(conn, "SELECT * FROM scriptengine WHERE scriptname='" + value(script.name) + "'",
              {{"scriptcontent", script.stored(), true}});
  }
  report("scriptengine", scripts().size());
}

}  // namespace

bool fill_sample_data(Console& console, std::chrono::local_seconds end, const Report& report) {
  const auto database = console.components().create<Database>();
  Settings& settings = console.settings();
  ConnectionHandle conn = database->open_database(settings.regread(settings.data_provider_path()));

  const Lists lists = make_lists();
  for (const Literal table : tables_beside_lists) {
    if (has_rows(*database, conn, table)) return false;
  }
  for (const ListTable& list : lists.tables) {
    if (has_rows(*database, conn, list.table)) return false;
  }
  database->CreateTable(conn, "scriptengine",
                        "scriptname nvarchar (255) NOT NULL Primary Key, scriptcontent image NULL, sposition "
                        "nvarchar(255) null, prio int default 0, svisible int default 0");
  if (has_rows(*database, conn, "scriptengine")) return false;

  conn->begin_transaction();
  try {
    for (const ListTable& list : lists.tables) {
      for (const std::string& entry : list.entries)
        conn->execute(insert_into(list.table, list.column, entry));
      report(list.table.text(), list.entries.size());
    }
    write_small_tables(*conn, report);
    write_logs(*conn, lists, end, report);
    write_archive(*conn, lists, end, report);
    write_scripts(*conn, report);
    report("konf", write_options(console, *database, conn));
    conn->commit();
  } catch (...) {
    conn->roll_back();
    throw;
  }
  conn->settle();
  return true;
}

}  // namespace zrl::sample
