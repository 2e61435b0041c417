#include "front/run_header.h"

#include <ios>
#include <sstream>
#include <string>

#include "front/arguments.h"
#include "front/host_info.h"
#include "gate/licence_gate.h"
#include "time/time_format.h"

namespace {

constexpr const char* byte_order_mark_option = "-utf8_bom";
constexpr const char* byte_order_mark = "\xEF\xBB\xBF";
constexpr const char* network_mark = "<~>";
constexpr const char* usb_mark = ":=";

// The date is by -dateformat as given, whether the option will be accepted or not.
std::string run_date(const argument_list& args, const zk::time& launch_time) {
  std::string mask = "mm/dd/yyyy";
  std::string value;
  if (get_option_value("-dateformat", value, args, 1) &&
      licence_gate::allows_option("-dateformat")) {
    mask = value;
  }
  std::string date;
  std::string time;
  zk::format_masked(date, time, launch_time, mask, "hh:mm:ss");
  return date + " " + time + " UTC";
}

std::string host_text() {
  host_info info;
  host_info_read(info, probe_exe_path());
  std::ostringstream system;
  system.exceptions(std::ios::badbit);  // too little memory would cut the text
  host_info_write(info, system, ";", " ", false, false);
  std::string text = "; host: " + host_name() + "; system: " + system.str();
  if (info.on_network || info.on_usb) text += ";";
  if (info.on_network) text += network_mark;
  if (info.on_usb) text += usb_mark;
  return text;
}

std::string command_line_text(const argument_list& args) {
  std::string joined;
  make_cmdline(joined, args, '\'');
  const char* list_mark = has_option("-pipe", args, 0) ? "<filelist> ... | " : "";
  return "\"command line: " + std::string(list_mark) + joined + "\"";
}

}  // namespace

std::string banner_line() {
  return "udx" + std::string(licence_gate::edition()) + " ver: " UDX_VERSION "; the udx developers";
}

std::string make_run_header(const argument_list& args, const zk::time& launch_time) {
  std::string header;
  if (has_option(byte_order_mark_option, args, 1)) header += byte_order_mark;
  header += banner_line() + "\n";
  header += "run date: " + run_date(args, launch_time) + host_text() + "\n";
  header += command_line_text(args) + "\n";
  return header;
}
