#include "host/sample/options.h"

#include <algorithm>

#include "core/text/error.h"
#include "host/sample/lists.h"

namespace zrl::sample {

namespace {

struct Number {
  std::string_view key;
  std::int32_t value;
};

struct Text {
  std::string_view key;
  std::string_view value;
};

constexpr std::string_view switched_on =
    "checkmx checksmtpmx checkmimemx checkforat protokoll arcbody ehlo checkhelovalid greylist "
    "checkheloip debug check_spf use_default_spf enable_pop3 ReturnPath checkbodydom checkbw "
    "checkblhelo ip_checking checkheaderip autoBLheader activereject checkreverseblacklist "
    "checkreversewhitelist norelay checklocalhelo nofakedom localmail nofakemail checkmail "
    "checksubject checkbody enablesubjectwhite checklongsubject subnetcheck exceptdomain exceptmail "
    "RBLcheck enablesurbl checkfiles checkextension scriptcheck";
constexpr std::string_view switched_off =
    "removereceipts comparemimewithsmtp autORtest enablepipe simulation cutconnection checkmid "
    "blockndr whitel_spf check_cid use_default_cid checkheaderdom checkbodyip checkreverse "
    "check_real_ad checkshortsubject editbody checkfilesstream dontstartproxy";
constexpr Number numbers[] = {{"autoimport", 60},        {"poptime", 5},     {"subjectspace", 5},
                              {"consolerefresh", 30000}, {"listenport", 25}, {"forwardport", 25}};

constexpr Text texts[] = {
    {"welcome",
     "220-************************************************\r\n"
     "220-Mirvan here\r\n"
     "220-Please accept our Mail Policy and do not SPAM us\r\n"
     "220-We are protected by Mirvan (http://www.mirvan.example/)\r\n"
     "220 ************************************************"},
    {"hello", "250 Hello - Please do not SPAM me "},
    {"bye", "221 2.0.0 thank you for not SPAMMING me"},
    {"queue", "250 2.6.0 You got rid of your HAM"},
    {"default_spf", "v=spf1 a/24 mx/24 ptr ~all"},
    {"default_cid", "<ep xmlns='http://ms.net/1'><out><m><mx/><r>192.0.2.0/24</r></m></out></ep>"},
    {"pickup", "C:\\Mirvan\\Pickup"},
    {"badmail", "C:\\Mirvan\\Badmail"},
    {"ldapserver", "directory.mirvan.example"},
    {"forwardaddress", forward_address},
    {"listenip", listen_address}};

// Sets the options that stand in `keys`, one blank between them; returns how many.
std::size_t set_all(std::string_view keys, std::int32_t value, Database& database, ConnectionHandle& conn) {
  std::size_t count = 0;
  while (!keys.empty()) {
    const std::size_t end = std::min(keys.find(' '), keys.size());
    database.set_option(keys.substr(0, end), value, conn);
    keys.remove_prefix(std::min(end + 1, keys.size()));
    ++count;
  }
  return count;
}

}  // namespace

std::size_t write_options(Console& console, Database& database, ConnectionHandle& conn) {
  Settings& settings = console.settings();
  const std::size_t switches =
      set_all(switched_on, 1, database, conn) + set_all(switched_off, 0, database, conn);
  for (const Number& option : numbers) database.set_option(option.key, option.value, conn);
  for (const Text& option : texts) database.set_string(option.key, option.value, conn);
  database.set_string("version", settings.product_version(), conn);
  database.addbytes(48'316'207'114, conn);
  database.addconnections(1'284'305, conn);
  database.adddropps(20'417, conn);

  const bool written = settings.regwrite_dword(settings.debug_path(), 1) &&
                       settings.regwrite_string(settings.path_of("modules\\HeaderWordCheck\\enabled"), "1");
  if (!written) throw Error(1, "cannot write the registry values of the sample");
  return switches + std::size(numbers) + std::size(texts) + 4;
}

}  // namespace zrl::sample
