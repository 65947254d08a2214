// A mail server for trying things out by hand: prints its port, and appends what it takes to a file
// until it is ended.
//
//   smtp_sink FILE [PORT]
#include <fstream>
#include <iostream>
#include <string>

#include <unistd.h>

#include "support/smtp_sink.h"

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::cerr << "usage: smtp_sink FILE [PORT]\n";
    return 2;
  }
  const std::string path = argv[1];
  const auto append = [path](const zrl::test::SmtpSink::Mail& mail) {
    std::ofstream file(path, std::ios::binary | std::ios::app);
    file << "MAIL FROM:<" << mail.sender << ">\r\n";
    for (const std::string& recipient : mail.recipients) file << "RCPT TO:<" << recipient << ">\r\n";
    file << "DATA\r\n" << mail.data << ".\r\n";
  };
  try {
    zrl::test::SmtpSink::Behaviour behaviour;
    if (argc == 3) behaviour.port = static_cast<std::uint16_t>(std::stoul(argv[2]));
    behaviour.on_mail = append;
    const zrl::test::SmtpSink sink(std::move(behaviour));
    std::cout << sink.port() << std::endl;
    for (;;) ::pause();
  } catch (const std::exception& error) {
    std::cerr << "smtp_sink: " << error.what() << '\n';
    return 1;
  }
}
