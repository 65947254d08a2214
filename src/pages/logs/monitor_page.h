#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/contracts/mail_message.h"
#include "core/page.h"
#include "pages/logs/archive_lists.h"

namespace zrl {

// The archive of the mails that the proxy handled, one mail at a time, the newest first: read it,
// export it, answer it, and put its sender, domain, client or subject on a list. A mail's source, which may
// be large and hostile, is read only when the mail is shown, exported or answered.
class MonitorPage : public Page {
 public:
  explicit MonitorPage(Console& console);

  ScrollBar HScroll1{*this, "HScroll1", "Walks through the archive; the newest mail is at the left"};
  Label Label1{*this, "Label1", "Position in the archive", HScroll1};
  Button Command1{*this, "Command1", "Refresh", "Looks for new mails, and reads the list again"};
  CheckBox Check1{*this, "Check1", "auto refresh",
                  "Shows what stands at this position whenever the archive is read again"};
  Timer Timer1{*this, "Timer1", 0, true};

  Frame Frame1{*this, "Frame1", "Mail"};
  TextField mid{*this, "mid", "The identifier that the sender gave the mail", {.fixed_pitch = true}};
  Label Label2{*this, "Label2", "Message-ID:", mid};
  TextField tstamp{*this, "tstamp", "When the proxy logged the mail", {.fixed_pitch = true}};
  Label Label3{*this, "Label3", "Logged", tstamp};
  TextField otstamp{*this, "otstamp", "The mail's own time stamp", {.fixed_pitch = true}};
  Label Label4{*this, "Label4", "Time stamp", otstamp};
  TextField msubject{*this, "msubject", "The subject, decoded", {.fixed_pitch = true}};
  Label Label5{*this, "Label5", "Subject", msubject};
  TextField sender{*this, "sender", "The sender as the mail's header tells it", {.fixed_pitch = true}};
  Label Label6{*this, "Label6", "Sender (mime)", sender};
  TextField sdom{*this, "sdom", "The domain of the sender", {.fixed_pitch = true}};
  Label Label8{*this, "Label8", "Sender Domain", sdom};
  TextField returnaddr{*this, "returnaddr", "The domain of the return path", {.fixed_pitch = true}};
  Label Label9{*this, "Label9", "Return Domain", returnaddr};
  TextField sip{*this, "sip", "The address of the client that sent the mail", {.fixed_pitch = true}};
  Label Label10{*this, "Label10", "Sender IP", sip};
  TextField envelope{*this,
                     "envelope",
                     "Sender and recipients as the client told them",
                     {.multi_line = true, .fixed_pitch = true}};
  Label Label11{*this, "Label11", "SMTP Envelope", envelope};
  TextField mailheader{*this,
                       "mailheader",
                       "The text of the mail, or its header if it has none",
                       {.multi_line = true, .fixed_pitch = true}};
  Label Label7{*this, "Label7", "Message Header", mailheader};
  TextField mail{*this, "mail", "The mail as it came", {.multi_line = true, .fixed_pitch = true}};
  Label Label15{*this, "Label15", "Mail Source", mail};
  Button savemail{*this, "savemail", "save Mail", "Writes the mail into the folder \"archive\", once"};
  Button Command11{*this, "Command11", "reply Mail", "Opens an answer to the mail"};
  Button Command5{*this, "Command5", "Delete Mail", "Deletes this mail from the archive"};

  Frame Frame2{*this, "Frame2", "Put on a list"};
  Button Command2{*this, "Command2", "add to Keywords", "Puts the subject on the list of subject keywords"};
  Button blacklistsender{*this, "blacklistsender", "Blacklist Sender",
                         "Puts the sender on the e-mail black list"};
  Button Command10{*this, "Command10", "Whitelist Sender", "Puts the sender on the e-mail white list"};
  Button Command4{*this, "Command4", "Blacklist Domain", "Puts the sender's domain on the domain black list"};
  Button Command7{*this, "Command7", "Whitelist Domain", "Puts the sender's domain on the domain white list"};
  Button Command9{*this, "Command9", "Blacklist Return",
                  "Puts the domain of the return path on the domain black list"};
  Button Command3{*this, "Command3", "Block IP", "Puts the client's address on the IP black list"};
  Button Command8{*this, "Command8", "Whitelist this IP", "Puts the client's address on the IP white list"};
  ListBox List1{*this, "List1", "The list that was changed last; click an entry to remove it"};
  Label Label16{*this, "Label16", "The list changed last", List1};
  TextField wert{*this, "wert", "The entry of that list to remove", {.fixed_pitch = true}};
  Label Label17{*this, "Label17", "Entry", wert};
  Button Command6{*this, "Command6", "Delete", "Takes the entry off the list"};

  Frame Frame3{*this, "Frame3", "Service"};
  Label Label18{*this, "Label18", "Total Bytes Received:"};
  Label Label12{*this, "Label12", ""};
  Label Label19{*this, "Label19", "Total Incoming Connections:"};
  Label Label13{*this, "Label13", ""};
  Label Label20{*this, "Label20", "Disconnected Sessions:"};
  Label Label14{*this, "Label14", ""};

 private:
  // The lists that the actions change.
  static constexpr ArchiveLists::Touched subjects{list::subject_keywords};
  static constexpr ArchiveLists::Touched black_domains{list::black_domains, true};
  static constexpr ArchiveLists::Touched white_domains{list::white_domains, true};
  static constexpr ArchiveLists::Touched black_addresses{list::black_addresses};
  static constexpr ArchiveLists::Touched white_addresses{list::white_addresses};
  static constexpr ArchiveLists::Touched black_mails{list::black_mails, false, false};
  static constexpr ArchiveLists::Touched white_mails{list::white_mails, false, false};

  void load() override;
  // The key of a mail: shows it, if the archive still has it.
  void open_query(std::string_view query) override;
  void hide() override;

  void prepare_database();
  void refresh();
  void open_archive();
  void load_interval();
  void read_counters();

  void show_position();
  void show_mail(std::int64_t position);
  void empty_fields();
  void fill_fields();
  void show_body(std::string_view source);
  // What people read of a mail, as text; without a caption if there is nothing to read.
  struct Body {
    std::string text;
    std::string_view caption;
  };
  Body body_of(const Mail& parsed);

  // `entry` is what the operation puts on the list.
  void bind_action(Button& button, const TextField& entry, const ArchiveLists::Touched& touched,
                   const std::function<void()>& operation);
  void delete_mail();
  std::unique_ptr<RecordSet> open_shown_mail(Connection::Access access);
  void save_mail();
  void export_mail(RecordSet& record);
  Mail read_shown_mail();
  void reply();

  std::unique_ptr<RecordSet> archive_;
  ArchiveLists lists_{*this, List1, wert};
  // The row of the mail in view. Message-IDs come from strangers: they may be missing, repeated, or anything.
  std::optional<std::int64_t> shown_;
};

}  // namespace zrl
