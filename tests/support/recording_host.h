#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "core/contracts/host.h"
#include "core/form.h"

namespace zrl::test {

// A host without people: it records what it is asked for and answers as it was told to.
class RecordingHost : public Host {
 public:
  BoxReply message_box(const MessageBox& box) override {
    boxes.push_back(box);
    return reply;
  }
  bool allows_modeless() const override { return modeless; }
  void show(Form& dialog) override {
    if (on_show) on_show(dialog);
    if (!modeless) dialog.close();
  }
  void process_events() override {
    ++yields;
    if (on_process_events) on_process_events();
  }
  void wait(std::chrono::milliseconds time) override {
    ++waits;
    if (on_wait) on_wait();
    std::this_thread::sleep_for(time);
  }
  void start_program(const ProgramStart& program) override { programs.push_back(program); }
  void offer_file(const std::filesystem::path& path) override { offered.push_back(path); }
  void open_page(std::string_view page, std::string_view query) override {
    opened.push_back(std::string(page) + "/" + std::string(query));
  }
  void show_progress(const Progress&) override { ++progress_reports; }
  bool guards_newer_values() const override { return guards; }

  std::vector<MessageBox> boxes;
  std::vector<ProgramStart> programs;
  std::vector<std::filesystem::path> offered;
  std::vector<std::string> opened;  // "page/query"
  std::function<void(Form&)> on_show;
  std::function<void()> on_process_events;
  std::function<void()> on_wait;
  BoxReply reply = BoxReply::ok;
  bool modeless = false;
  bool guards = false;
  int yields = 0;
  int waits = 0;
  int progress_reports = 0;
};

}  // namespace zrl::test
