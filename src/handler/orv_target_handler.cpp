// The target query: who the agent runs on.

#include <orv/command.h>
#include <stdint.h>
#include <version_info.h>

#include <string_view>

#include "common/answer.h"
#include "common/bounded_text.h"
#include "common/log.h"

namespace orv {
namespace {

constexpr size_t answer_size = 200;

struct target_record {
  char category[32];
  char platform[16];
  char model[16];
  char step[16];
  char firm_ver[64];
  uint8_t endian_type;
  char build_type[8];
  int32_t cis_no;
};

// All fields at their longest, the numbers and the seven commas: the answer always fits.
static_assert(sizeof(target_record) + 3 + 11 + 7 < answer_size);

target_record target_info = {"CSC", "Q7", "", "", "", 0xf0, "RELEASE", 0};

template <size_t N>
void fill(char (&field)[N], const char* text) {
  const std::string_view whole{text != nullptr ? text : ""};
  field[whole.copy(field, N - 1)] = '\0';
}

}  // namespace
}  // namespace orv

void orv_target_handler(orv_command* /*record*/, const char* /*data*/) {
  orv_log_info("start+ \n");
  orv::target_record& target = orv::target_info;
  orv::fill(target.model, get_project_name());
  orv::fill(target.step, get_board_version_name());
  orv::fill(target.firm_ver, get_fw_version_full());

  orv_log_info("  category    = %s \n", target.category);
  orv_log_info("  platform    = %s \n", target.platform);
  orv_log_info("  model       = %s \n", target.model);
  orv_log_info("  step        = %s \n", target.step);
  orv_log_info("  firm_ver    = %s \n", target.firm_ver);
  orv_log_info("  endian_type = 0x%02x \n", target.endian_type);
  orv_log_info("  build_type  = %s \n", target.build_type);
  orv_log_info("  cis_no      = %d \n", target.cis_no);

  char buffer[orv::answer_size];
  orv::bounded_text text{buffer};
  text.format("%s,%s,%s,%s,%s,%d,%s,%d", target.category, target.platform, target.model,
              target.step, target.firm_ver, target.endian_type, target.build_type, target.cis_no);
  orv::answer(text.c_str(), ORV_RESULT_OK);
  orv_log_info("end- \n");
}
