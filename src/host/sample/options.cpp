#include "host/sample/options.h"

#include "core/error.h"
#include "core/text.h"
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

constexpr Number numbers[] = {
    // general
    {"checkmx", 1},
    {"checksmtpmx", 1},
    {"checkmimemx", 1},
    {"removereceipts", 0},
    {"comparemimewithsmtp", 0},
    {"checkforat", 1},
    {"autORtest", 0},
    {"protokoll", 1},
    {"arcbody", 1},
    {"enablepipe", 0},
    {"ehlo", 1},
    {"simulation", 0},
    {"autoimport", 60},
    {"cutconnection", 0},
    {"checkhelovalid", 1},
    {"greylist", 1},
    {"checkmid", 0},
    {"checkheloip", 1},
    {"blockndr", 0},
    {"debug", 1},
    // spf, pop_config
    {"check_spf", 1},
    {"use_default_spf", 1},
    {"whitel_spf", 0},
    {"check_cid", 0},
    {"use_default_cid", 0},
    {"enable_pop3", 1},
    {"poptime", 5},
    // domainbw, ipbw
    {"ReturnPath", 1},
    {"checkbodydom", 1},
    {"checkheaderdom", 0},
    {"checkbw", 1},
    {"checkblhelo", 1},
    {"ip_checking", 1},
    {"checkbodyip", 0},
    {"checkheaderip", 1},
    {"autoBLheader", 1},
    {"activereject", 1},
    {"checkreverse", 0},
    {"checkreverseblacklist", 1},
    {"checkreversewhitelist", 1},
    // localstuff, localuser, wbuser
    {"norelay", 1},
    {"checklocalhelo", 1},
    {"nofakedom", 1},
    {"localmail", 1},
    {"nofakemail", 1},
    {"check_real_ad", 0},
    {"checkmail", 1},
    // keywords, subnets, exceptions
    {"checksubject", 1},
    {"checkbody", 1},
    {"enablesubjectwhite", 1},
    {"checklongsubject", 1},
    {"checkshortsubject", 0},
    {"subjectspace", 5},
    {"subnetcheck", 1},
    {"exceptdomain", 1},
    {"exceptmail", 1},
    // rblists, surbl, wordreplace, filescanner
    {"RBLcheck", 1},
    {"enablesurbl", 1},
    {"editbody", 0},
    {"checkfiles", 1},
    {"checkfilesstream", 0},
    {"checkextension", 1},
    // monitor, ScriptEngine, ServiceControl
    {"consolerefresh", 30000},
    {"scriptcheck", 1},
    {"listenport", 25},
    {"forwardport", 25},
    {"dontstartproxy", 0}};

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
    {"default_cid", "<ep xmlns='http://callerid.example/1'><out><m><mx/><a>192.0.2.0/24</a></m></out></ep>"},
    {"pickup", "C:\\Mirvan\\Pickup"},
    {"badmail", "C:\\Mirvan\\Badmail"},
    {"ldapserver", "directory.mirvan.example"},
    {"forwardaddress", forward_address},
    {"listenip", listen_address}};

}  // namespace

std::size_t write_options(Console& console, Database& database, ConnectionHandle& conn) {
  Settings& settings = console.settings();
  for (const Number& option : numbers) database.set_option(option.key, option.value, conn);
  for (const Text& option : texts) database.set_string(option.key, option.value, conn);
  database.set_string("version", settings.product_version(), conn);
  database.addbytes(48'316'207'114, conn);
  database.addconnections(1'284'305, conn);
  database.adddropps(20'417, conn);

  const bool written = settings.regwrite_dword(settings.debug_path(), 1) &&
                       settings.regwrite_string(settings.path_of("modules\\HeaderWordCheck\\enabled"), "1");
  if (!written) throw Error(1, "cannot write the registry values of the sample");
  return std::size(numbers) + std::size(texts) + 4;
}

}  // namespace zrl::sample
