#include "slapd.h"

#include <csignal>
#include <fstream>
#include <stdexcept>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zrl::test {

namespace {

constexpr const char* program = "/usr/sbin/slapd";
constexpr const char* loader = "/usr/sbin/slapadd";

constexpr const char* schema = R"(
include /etc/ldap/schema/core.schema
include /etc/ldap/schema/cosine.schema
include /etc/ldap/schema/inetorgperson.schema
modulepath /usr/lib/ldap
moduleload back_mdb
attributetype ( 1.3.6.1.4.1.99999.1.1 NAME 'proxyAddresses' EQUALITY octetStringMatch
  SYNTAX 1.3.6.1.4.1.1466.115.121.1.40 )
attributetype ( 1.3.6.1.4.1.99999.1.2 NAME 'rootDomainNamingContext'
  EQUALITY caseIgnoreMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )
attributetype ( 1.3.6.1.4.1.99999.1.3 NAME 'defaultNamingContext'
  EQUALITY caseIgnoreMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )
objectclass ( 1.3.6.1.4.1.99999.2.1 NAME 'mailUser' SUP top AUXILIARY MAY proxyAddresses )
objectclass ( 1.3.6.1.4.1.99999.2.2 NAME 'contact' SUP top AUXILIARY )
)";

// Ends with the test program, however that ends.
pid_t start_process(const std::vector<std::string>& words) {
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const pid_t child = ::fork();
  if (child != 0) return child;
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  const int nowhere = ::open("/dev/null", O_RDWR);
  ::dup2(nowhere, STDOUT_FILENO);
  ::dup2(nowhere, STDERR_FILENO);
  ::execv(arguments[0], arguments.data());
  ::_exit(127);
}

std::string base64(const std::string& bytes) {
  constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string result;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      result += i + k > bytes.size() ? '=' : digits[group >> (18 - 6 * k) & 63];
    }
  }
  return result;
}

}  // namespace

Slapd::Slapd(const std::string& entries, const Options& options) {
  if (options.encrypted) tls_ = make_certificate(folder_.path(), "IP:127.0.0.1");
  configure(options);
  load(entries, options.suffix);
  // Another program may take the port before the server does; then another port is tried.
  for (int tries = 0; tries < 5; ++tries) {
    start(options.encrypted);
    for (int i = 0; i < 500; ++i) {
      if (::waitpid(process_, nullptr, WNOHANG) != 0) break;
      if (answers()) return;
      ::usleep(10'000);
    }
    ::kill(process_, SIGKILL);
  }
  throw std::runtime_error("no directory server could be started");
}

Slapd::~Slapd() {
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

void Slapd::configure(const Options& options) const {
  const std::string folder = folder_.path().string();
  std::filesystem::create_directory(folder + "/data");
  std::ofstream config(folder + "/slapd.conf");
  config << schema;
  if (!tls_.key.empty()) {
    config << "TLSCertificateFile " << tls_.certificate.string() << "\nTLSCertificateKeyFile "
           << tls_.key.string() << "\n";
  }
  if (!options.root.empty()) {
    std::ofstream(folder + "/root.ldif") << "dn:\nobjectClass: top\nobjectClass: extensibleObject\n"
                                         << options.root;
    config << "rootDSE " << folder << "/root.ldif\n";
  }
  config << "database mdb\nsuffix \"" << options.suffix << "\"\ndirectory " << folder
         << "/data\nmaxsize 268435456\nlimits * " << options.limits << "\n";
}

void Slapd::load(const std::string& entries, const std::string& suffix) const {
  const std::string folder = folder_.path().string();
  std::ofstream(folder + "/entries.ldif")
      << "dn: " << suffix << "\nobjectClass: extensibleObject\nobjectClass: organizationalUnit\nou: all\n\n"
      << entries;
  int status = 0;
  ::waitpid(start_process({loader, "-q", "-f", folder + "/slapd.conf", "-l", folder + "/entries.ldif"}),
            &status, 0);
  if (status != 0) throw std::runtime_error("the entries of the directory could not be loaded");
}

void Slapd::start(bool encrypted) {
  port_ = free_port();
  process_ = start_process({program, "-f", folder_.path() / "slapd.conf", "-h",
                            (encrypted ? "ldaps://" : "ldap://") + address(), "-d", "0"});
}

bool Slapd::answers() const {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons(port_);
  to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool connected = ::connect(fd, reinterpret_cast<sockaddr*>(&to), sizeof to) == 0;
  ::close(fd);
  return connected;
}

std::string user(const std::string& name, const std::string& mail, const std::vector<std::string>& others,
                 const std::string& more) {
  std::string ldif = "dn: cn=" + name + ",dc=corp,dc=example\nobjectClass: inetOrgPerson\n" +
                     "objectClass: mailUser\n" + more + "cn: " + name + "\nsn: x\n";
  if (!mail.empty()) ldif += "mail: " + mail + "\n";
  for (const std::string& other : others) ldif += "proxyAddresses:: " + base64(other) + "\n";
  return ldif + "\n";
}

}  // namespace zrl::test
